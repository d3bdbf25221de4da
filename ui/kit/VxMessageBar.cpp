#include "VxMessageBar.h"

#include "VxIcon.h"
#include "VxIconLabel.h"
#include "VxText.h"
#include "VxToolButton.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Screen readers on this desktop hear of a notification that is shown, and of no alert.
class Notification final : public QAccessibleWidget
{
public:
    explicit Notification(VxMessageBar *bar) : QAccessibleWidget(bar, QAccessible::Notification) {}
};

/// The caller owns it.
QAccessibleInterface *accessible(const QString &, QObject *object)
{
    auto *bar = qobject_cast<VxMessageBar *>(object);
    return bar ? std::make_unique<Notification>(bar).release() : nullptr;
}
} // namespace

VxMessageBar::VxMessageBar(QWidget *parent)
    : QFrame(parent),
      m_icon(new VxIconLabel(u"info.circle.fill"_s, this)),
      m_text(VxText::make({}, VxText::Role::body, this)),
      m_busy(VxText::make({}, VxText::Role::body, this)),
      m_bar(new QProgressBar(this)),
      m_dismiss(new VxToolButton(this)),
      m_stop(new QPushButton(u"Stop"_s, this))
{
    QAccessible::installFactory(accessible); // once, however often it is called
    setObjectName(u"message"_s);
    const int em = fontMetrics().height();
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

void VxMessageBar::displayMessage(const QString &message)
{
    m_text->setText(message);
    for (QWidget *part : std::initializer_list<QWidget *>{m_icon, m_text, m_dismiss}) {
        part->setVisible(!message.isEmpty());
    }
    showWith(message);
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
    const bool isNews = std::exchange(m_workText, work.text) != work.text;
    showWith(isNews ? work.text : QString());
}

QWidget *VxMessageBar::followInTabOrder(QWidget *before)
{
    setTabOrder(before, m_dismiss);
    setTabOrder(m_dismiss, m_stop);
    return m_stop;
}

void VxMessageBar::showWith(const QString &news)
{
    const bool wasVisible = isVisible();
    if (!news.isEmpty()) {
        setAccessibleName(news);
    }
    setVisible(!m_text->text().isEmpty() || !m_workText.isEmpty());
    // a notification is read out when it comes up, which Qt tells itself where it was hidden
    if (!news.isEmpty() && wasVisible && isActiveWindow()) {
        QAccessibleEvent event(this, QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&event);
    }
}
