#include "VxZoomHost.h"

#include "VellThemeRoot.h"
#include "VxScale.h"

#include <QEvent>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Holds the content. A scroll area gives a layout that goes by its width the height that it would
/// like to have, and scrolls long before it has to; this one asks for the smallest height alone.
class Frame final : public QVBoxLayout
{
public:
    using QVBoxLayout::QVBoxLayout;

    [[nodiscard]] bool hasHeightForWidth() const override { return false; }
};
} // namespace

VxZoomHost::VxZoomHost(QWidget *content, QSize lines, QWidget *parent)
    : QScrollArea(parent), m_content(content), m_lines(lines)
{
    setObjectName(u"host"_s);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    content->installEventFilter(this);
    setProperty(VxScale::ownSize, true);
    content->setProperty(VxScale::ownSize, true);
    m_origin = new QWidget(content);
    m_origin->setObjectName(u"vell-zoom-origin"_s);
    m_origin->setGeometry(0, 0, 1, 1);
    m_origin->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_origin->lower();
    auto *frame = new QWidget(this);
    frame->setProperty("clear", true);
    frame->setProperty(VxScale::ownSize, true);
    auto *column = new Frame(frame);
    column->setContentsMargins({});
    column->addWidget(content);
    setWidget(frame);
    if (VellThemeRoot *root = VellThemeRoot::instance()) {
        connect(root, &VellThemeRoot::changed, this, [this] {
            limit();
            scrollToTop();
        });
    }
}

void VxZoomHost::scrollToTop()
{
    ensureWidgetVisible(m_origin, 0, 0);
}

bool VxZoomHost::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_content && event->type() == QEvent::LayoutRequest) {
        limit();
    }
    return QScrollArea::eventFilter(watched, event);
}

void VxZoomHost::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    limit();
}

void VxZoomHost::showEvent(QShowEvent *event)
{
    limit(); // by the screen that it is on now
    QScrollArea::showEvent(event);
}

void VxZoomHost::limit()
{
    const QLayout *layout = m_content->layout();
    QSize smallest = m_content->minimumSizeHint();
    if (layout && layout->hasHeightForWidth()) {
        smallest.setHeight(
            layout->totalMinimumHeightForWidth(qMax(viewport()->width(), smallest.width())));
    }
    smallest = smallest.expandedTo(m_lines * fontMetrics().height());
    widget()->setMinimumSize(smallest);
    const QSize room =
        screen()->availableGeometry().size() * 9 / 10; // around it the window's frame
    setMinimumSize(smallest.boundedTo(room));
}
