#include "QSLinkChecker.h"

#include "QSMutation.h"
#include "QSNet.h"

#include <QHash>
#include <QUrl>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;

bool QSLinkChecker::isRefusal(bool browserOnly, int status)
{
    constexpr int forbidden = 403;
    constexpr int tooMany = 429;
    return browserOnly && (status == forbidden || status == tooMany);
}

namespace QSLinkChecker {
namespace {
/// Where a PDF says what it is; no more of a form is fetched.
constexpr qint64 enoughBytes = 2048;
/// For each of the two questions: so little comes in this time from every site that answers.
constexpr std::chrono::minutes longestQuestion{2};

bool isGood(const QSNet::Response &response)
{
    return response.status >= 200 && response.status < 400;
}

/// The result so far, with what the answer says of itself.
Check answered(Check check, const QSNet::Response &response)
{
    check.status = response.status;
    check.finalURL = response.finalURL;
    check.contentType = response.header("content-type").value_or(QString());
    return check;
}

/// Why the answer to the GET does not do; empty when it is what the link promises.
QString fault(const Check &check, const QByteArray &body, bool expectPDF)
{
    if (!expectPDF || check.contentType.contains(u"pdf"_s, Qt::CaseInsensitive) ||
        body.startsWith("%PDF")) {
        return {};
    }
    return u"expected a PDF but the site sent "_s +
           (check.contentType.isEmpty() ? u"something else"_s : check.contentType);
}

/// One question to a site, and which of the links it answers.
struct Question
{
    QSDirectory::Link link; ///< without a fragment, which is never sent
    QString host;
    QList<qsizetype> places = {}; ///< in the list of links
};

QList<Question> questionsFor(const QList<QSDirectory::Link> &links)
{
    QList<Question> questions;
    for (qsizetype place = 0; place < links.size(); ++place) {
        QSDirectory::Link link = links.at(place);
        link.url = link.url.section(u'#', 0, 0);
        const auto same = std::ranges::find_if(questions, [&](const Question &asked) {
            return asked.link.url == link.url && asked.link.expectPDF == link.expectPDF &&
                   asked.link.skip == link.skip;
        });
        if (same != questions.end()) {
            same->places.append(place);
        } else {
            questions.append({link, QUrl(link.url).host(), {place}});
        }
    }
    return questions;
}

/// One check of many links: its workers take questions, no more than allowed of one host, and put
/// the answers in the links' order.
class Round final
{
public:
    Round(QList<QSDirectory::Link> links, const std::function<void(int, int)> &progress,
          const std::stop_token &stop)
        : m_links(std::move(links)),
          m_waiting(questionsFor(m_links)),
          m_results(m_links.size()),
          m_progress(progress),
          m_stop(stop)
    {
    }

    [[nodiscard]] QList<Check> run(int parallel)
    {
        {
            // Threads of its own: waiting for sites must not keep the program's pool from working.
            std::vector<std::jthread> workers;
            const qsizetype count = std::min<qsizetype>(std::max(parallel, 1), m_waiting.size());
            for (qsizetype started = 0; started < count; ++started) {
                workers.emplace_back([this] { work(); });
            }
        }
        QList<Check> done;
        for (const std::optional<Check> &result : std::as_const(m_results)) {
            if (result) {
                done.append(*result);
            }
        }
        return done;
    }

private:
    void work()
    {
        while (const std::optional<Question> question = take()) {
            finish(*question, check(question->link, m_stop));
        }
    }

    /// The next question whose host has room, waiting for one; absent when all are taken.
    std::optional<Question> take()
    {
        std::unique_lock lock(m_mutex);
        while (!m_waiting.isEmpty() && !m_stop.stop_requested()) {
            const auto next = std::ranges::find_if(m_waiting, [this](const Question &question) {
                return m_runningOf.value(question.host) < parallelChecksPerHost;
            });
            if (next != m_waiting.end()) {
                const Question question = *next;
                m_waiting.erase(next);
                ++m_runningOf[question.host];
                return question;
            }
            m_hostIsFree.wait(lock); // every full host has a worker, which ends even when stopped
        }
        return std::nullopt;
    }

    void finish(const Question &question, const Check &answer)
    {
        const std::scoped_lock lock(m_mutex);
        --m_runningOf[question.host];
        m_hostIsFree.notify_all();
        if (m_stop.stop_requested() && !answer.ok) {
            return; // cut short, which is no fault of the link
        }
        for (const qsizetype place : question.places) {
            Check &result = m_results[place].emplace(answer);
            result.label = m_links.at(place).label;
            result.url = m_links.at(place).url;
            ++m_done;
            if (m_progress) {
                m_progress(m_done, static_cast<int>(m_links.size()));
            }
        }
    }

    const QList<QSDirectory::Link> m_links;
    std::mutex m_mutex; ///< guards everything below that changes, and keeps progress in order
    std::condition_variable m_hostIsFree;
    QList<Question> m_waiting;
    QHash<QString, int> m_runningOf;
    QList<std::optional<Check>> m_results;
    int m_done = 0;
    const std::function<void(int, int)> &m_progress;
    const std::stop_token &m_stop;
};
} // namespace

QList<QSDirectory::Link> bulkLinks(const QSDirectory &directory)
{
    QList<QSDirectory::Link> links = directory.allLinks();
    links.removeIf([](const QSDirectory::Link &link) {
        return QSNet::isHandChecked(link.url) && !QSMutation::on(u"court-links-in-bulk");
    });
    return links;
}

Check check(const QSDirectory::Link &link, const std::stop_token &stop)
{
    Check result;
    result.label = link.label;
    result.url = link.url;
    result.browserOnly = link.skip;
    const QUrl url(link.url, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()) {
        result.note = u"not a valid link"_s;
        return result;
    }
    const QSNet::Answer head = QSNet::fetch({.url = link.url,
                                             .method = QSNet::Request::Method::head,
                                             .wholeTimeout = longestQuestion,
                                             .isAutomatic = true},
                                            stop);
    if (!link.expectPDF && head.response && isGood(*head.response)) {
        result = answered(result, *head.response);
        result.ok = true;
        return result;
    }
    const QByteArray range = "bytes=0-" + QByteArray::number(enoughBytes - 1);
    const QSNet::Answer get = QSNet::fetch({.url = link.url,
                                            .headers = {{"Range", range}},
                                            .wholeTimeout = longestQuestion,
                                            .isAutomatic = true,
                                            .enough = enoughBytes},
                                           stop);
    if (!get.response) {
        result.note = get.error.value_or(u"no answer"_s);
        return result;
    }
    result = answered(result, *get.response);
    if (isGood(*get.response)) {
        result.note = fault(result, get.body.value_or(QByteArray()), link.expectPDF);
        result.ok = result.note.isEmpty();
    } else if (isRefusal(link.skip, result.status)) {
        result.note =
            u"this official site blocks automated checks; it opens normally in a web browser"_s;
    }
    return result;
}

QList<Check> checkAll(const QSDirectory &directory, int parallel,
                      const std::function<void(int, int)> &progress, const std::stop_token &stop)
{
    return Round(bulkLinks(directory), progress, stop).run(parallel);
}
} // namespace QSLinkChecker
