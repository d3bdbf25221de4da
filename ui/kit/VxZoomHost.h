#pragma once

#include <QScrollArea>

/// What stands inside a window: a content that scrolls where the window is smaller than the
/// smallest size it was made for, at every zoom. The window may become as small as that size, and
/// smaller only where the screen is.
class VxZoomHost final : public QScrollArea
{
    Q_OBJECT

public:
    /// The content's smallest size in lines of the application's font, each way; the host goes by
    /// the content's layout where that needs more.
    VxZoomHost(QWidget *content, QSize lines, QWidget *parent);

    /// Shows the content's upper left corner, where its anchor "vell-zoom-origin" is.
    void scrollToTop();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    /// The content's smallest size holds for the window too, where the screen has room for it.
    void limit();

    QWidget *m_content;
    QSize m_lines;
    QWidget *m_origin;
};
