#pragma once

#include <QFrame>

class QVBoxLayout;

/// A rounded panel with the theme's gradient, to group what belongs together. The theme's style
/// sheet draws it.
class VxPanel : public QFrame
{
    Q_OBJECT

public:
    explicit VxPanel(QWidget *parent = nullptr);

    /// The panel's column of content.
    [[nodiscard]] QVBoxLayout *column() const { return m_column; }

private:
    QVBoxLayout *m_column;
};
