#include "VxMessageBar.h"

#include "VxIcon.h"
#include "VxText.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>

#include <utility>

using namespace Qt::Literals::StringLiterals;

VxMessageBar::VxMessageBar(QWidget *parent)
    : QFrame(parent),
      m_icon(new QLabel(this)),
      m_text(VxText::make({}, VxText::Role::body, this)),
      m_busy(VxText::make({}, VxText::Role::body, this)),
      m_bar(new QProgressBar(this)),
      m_dismiss(new QToolButton(this)),
      m_stop(new QPushButton(u"Stop"_s, this))
{
    setObjectName(u"message"_s);
    const int em = fontMetrics().height();
    m_icon->setPixmap(VxIcon::named(u"info.circle.fill"_s).pixmap(em, em));
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(em * 8);
    m_dismiss->setIcon(VxIcon::named(u"xmark"_s));
    m_dismiss->setAutoRaise(true);
    m_dismiss->setToolTip(u"Dismiss this message"_s);
    m_dismiss->setAccessibleName(u"Dismiss this message"_s);
    connect(m_dismiss, &QToolButton::clicked, this, &VxMessageBar::dismissed);
    connect(m_stop, &QPushButton::clicked, this, &VxMessageBar::stopWanted);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(em / 2, em / 3, em / 2, em / 3);
    row->addWidget(m_icon);
    row->addWidget(m_text, 1);
    row->addWidget(m_dismiss);
    row->addWidget(m_busy);
    row->addWidget(m_bar);
    row->addWidget(m_stop);
    hide();
}

void VxMessageBar::display(const QString &message, const Work &work)
{
    if (m_text->text() != message) {
        m_text->setText(message);
        announce(message);
    }
    for (QWidget *part : std::initializer_list<QWidget *>{m_icon, m_text, m_dismiss}) {
        part->setVisible(!message.isEmpty());
    }
    displayWork(work);
    setVisible(!message.isEmpty() || !work.text.isEmpty());
}

void VxMessageBar::displayWork(const Work &work)
{
    const bool counted = work.total > 0;
    m_busy->setText(counted ? u"%1: %2 of %3"_s.arg(work.text, QString::number(work.done),
                                                    QString::number(work.total))
                            : work.text);
    m_bar->setRange(0, work.total); // from 0 to 0 it moves
    m_bar->setValue(work.done);
    m_bar->setAccessibleName(work.text);
    for (QWidget *part : std::initializer_list<QWidget *>{m_busy, m_bar}) {
        part->setVisible(!work.text.isEmpty());
    }
    m_stop->setVisible(work.stoppable);
    m_stop->setAccessibleName(u"Stop: %1"_s.arg(work.text));
    if (std::exchange(m_workText, work.text) != work.text) {
        announce(work.text);
    }
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
