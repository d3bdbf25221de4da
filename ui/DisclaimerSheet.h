#pragma once

#include <QDialog>

/// The disclaimer that is read before the first use and on demand. Accepting it is the only way
/// out of it by mouse; Escape leaves it unaccepted, so that it comes again at the next start.
class DisclaimerSheet final : public QDialog
{
    Q_OBJECT

public:
    explicit DisclaimerSheet(QWidget *parent);
};
