#include "VxZoomHost.h"

#include "VellThemeRoot.h"

#include <QScreen>

using namespace Qt::Literals::StringLiterals;

VxZoomHost::VxZoomHost(QWidget *content, QSize smallest, QWidget *parent) : QScrollArea(parent)
{
    setObjectName(u"host"_s);
    setFrameShape(NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    content->setMinimumSize(smallest);
    m_origin = new QWidget(content);
    m_origin->setObjectName(u"vell-zoom-origin"_s);
    m_origin->setGeometry(0, 0, 1, 1);
    m_origin->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_origin->lower();
    setWidget(content);
    if (VellThemeRoot *root = VellThemeRoot::instance()) {
        connect(root, &VellThemeRoot::changed, this, [this] {
            limitWindow();
            scrollToTop();
        });
    }
}

void VxZoomHost::scrollToTop()
{
    ensureWidgetVisible(m_origin, 0, 0);
}

void VxZoomHost::showEvent(QShowEvent *event)
{
    limitWindow(); // by the screen that it is on now
    QScrollArea::showEvent(event);
}

void VxZoomHost::limitWindow()
{
    const QSize room = screen()->availableGeometry().size() * 9 / 10; // around it the window's frame
    setMinimumSize(widget()->minimumSize().boundedTo(room));
}
