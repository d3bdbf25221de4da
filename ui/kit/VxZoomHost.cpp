#include "VxZoomHost.h"

#include "VellThemeRoot.h"
#include "VxScale.h"

#include <QEvent>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

VxZoomHost::VxZoomHost(QWidget *content, QSize lines, QWidget *parent)
    : QScrollArea(parent), m_lines(lines)
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
    setWidget(content);
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
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        limit();
    }
    return QScrollArea::eventFilter(watched, event);
}

void VxZoomHost::showEvent(QShowEvent *event)
{
    limit(); // by the screen that it is on now
    QScrollArea::showEvent(event);
}

void VxZoomHost::limit()
{
    const QSize smallest =
        (m_lines * fontMetrics().height()).expandedTo(widget()->minimumSizeHint());
    widget()->setMinimumSize(smallest);
    const QSize room =
        screen()->availableGeometry().size() * 9 / 10; // around it the window's frame
    setMinimumSize(smallest.boundedTo(room));
}
