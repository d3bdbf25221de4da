#include "AppModel.h"

#include <chrono>

using namespace Qt::Literals::StringLiterals;

std::optional<QString> AppModel::busy() const
{
    return m_works.isEmpty() ? std::nullopt : std::optional(m_works.last().text);
}

AppModel::Progress AppModel::busyProgress() const
{
    return m_works.isEmpty() ? Progress() : m_works.last().progress;
}

bool AppModel::canStopBusy() const
{
    return !m_works.isEmpty() && m_works.last().stop.stop_possible() &&
           !m_works.last().stop.stop_requested();
}

void AppModel::stopBusy()
{
    if (canStopBusy()) {
        m_works.last().stop.request_stop();
        setMessage(u"Stopped."_s);
        Q_EMIT busyChanged();
    }
}

void AppModel::whenNothingIsAsked(const std::function<void()> &action)
{
    static constexpr std::chrono::milliseconds pause{200};
    if (m_asking) { // no panel over a question
        QTimer::singleShot(pause, this, [=, this] { whenNothingIsAsked(action); });
    } else {
        action();
    }
}
