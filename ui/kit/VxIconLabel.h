#pragma once

#include <QColor>
#include <QIcon>
#include <QLabel>
#include <QString>

/// An icon that stands by itself, some lines of its font tall and in the theme's colours as they
/// are when it is painted. It says nothing to screen readers; the text beside it does.
class VxIconLabel final : public QLabel
{
    Q_OBJECT

public:
    explicit VxIconLabel(QWidget *parent = nullptr);
    explicit VxIconLabel(const QString &symbol, QWidget *parent = nullptr);

    /// Shows another icon, in the theme's text colour or in one of the caller's.
    void setSymbol(const QString &symbol, const QColor &colour = {});
    void setIcon(const QIcon &icon, int lines = 1);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QIcon m_icon;
    int m_lines = 1;
};
