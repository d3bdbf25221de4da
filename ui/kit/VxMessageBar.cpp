#include "VxMessageBar.h"

#include "VxIcon.h"
#include "VxText.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

VxMessageBar::VxMessageBar(QWidget *parent)
    : QFrame(parent),
      m_icon(new QLabel(this)),
      m_text(VxText::make({}, VxText::Role::body, this)),
      m_busy(VxText::make({}, VxText::Role::body, this)),
      m_bar(new QProgressBar(this)),
      m_dismiss(new QToolButton(this))
{
    setObjectName(u"message"_s);
    const int em = fontMetrics().height();
    m_icon->setPixmap(VxIcon::named(u"info.circle.fill"_s).pixmap(em, em));
    m_bar->setRange(0, 0);
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(em * 8);
    m_dismiss->setIcon(VxIcon::named(u"xmark"_s));
    m_dismiss->setAutoRaise(true);
    m_dismiss->setToolTip(u"Dismiss this message"_s);
    m_dismiss->setAccessibleName(u"Dismiss this message"_s);
    connect(m_dismiss, &QToolButton::clicked, this, &VxMessageBar::dismissed);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(em / 2, em / 3, em / 2, em / 3);
    row->addWidget(m_icon);
    row->addWidget(m_text, 1);
    row->addWidget(m_dismiss);
    row->addWidget(m_busy);
    row->addWidget(m_bar);
    hide();
}

void VxMessageBar::display(const QString &message, const QString &busy)
{
    for (const auto &[label, text] : {std::pair(m_text, message), std::pair(m_busy, busy)}) {
        if (label->text() != text) {
            label->setText(text);
            announce(text);
        }
        label->setVisible(!text.isEmpty());
    }
    m_bar->setVisible(!busy.isEmpty());
    m_icon->setVisible(!message.isEmpty());
    m_dismiss->setVisible(!message.isEmpty());
    setVisible(!message.isEmpty() || !busy.isEmpty());
}

void VxMessageBar::announce(const QString &text)
{
    if (text.isEmpty()) {
        return;
    }
    setAccessibleName(text);
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}
