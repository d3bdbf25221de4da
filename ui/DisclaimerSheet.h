#pragma once

#include <QDialog>

/// The disclaimer that is read before the first use and on demand. Closed otherwise than by its
/// button it counts as unread, so that it comes again at the next start.
class DisclaimerSheet final : public QDialog
{
    Q_OBJECT

public:
    explicit DisclaimerSheet(QWidget *parent);
};
