#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

#include <chrono>
#include <optional>
#include <stop_token>

/// The one way to the agencies' sites; nothing else in the program opens a connection.
///
/// Only https, also after a redirect, of which ten are followed. No cookies, no cache, no passwords
/// kept. The proxy settings of the environment hold. Host names and TLS sessions are remembered
/// while the program runs, for all threads.
namespace QSNet {
/// Sent with every request, so that sites that turn unknown programs away still answer while this
/// one can be told from a browser.
inline const QString userAgent =
    QStringLiteral("Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 (KHTML, "
                   "like Gecko) Version/17.0 Safari/605.1.15 VellQuillstone/1.0");
/// No body larger than this is taken.
inline constexpr qint64 bodyLimit = qint64{64} * 1024 * 1024;

struct Request
{
    enum class Method { get, head };

    QString url;
    Method method = Method::get;
    /// Besides the fixed ones, which these can't replace.
    QList<QPair<QByteArray, QByteArray>> headers = {};
    /// How long the site may send nothing at all.
    std::chrono::milliseconds idleTimeout = std::chrono::seconds(60);
    /// How long the site may send next to nothing: less than a few thousand bytes.
    std::chrono::milliseconds slowTimeout = std::chrono::minutes(3);
    /// How long it all may take, redirects included. A form of 10 MB comes in time on the slowest
    /// line that is still in use.
    std::chrono::milliseconds wholeTimeout = std::chrono::hours(2);
    /// Nobody asked for just this: a redirect to a site that people check by hand is not followed,
    /// and is the answer.
    bool isAutomatic = false;
    /// Enough of the body for the caller: the transfer ends well there. Absent: all of it.
    std::optional<qint64> enough = {};
};

struct Response
{
    int status = 0;
    QString finalURL;                      ///< after redirects
    QHash<QByteArray, QByteArray> headers; ///< of the answer itself, names in lower case
    /// False when nothing but hanging up ended the body: it may have been cut off.
    bool endIsTold = true;

    /// A header's text; absent when the site sent none. The name in any case.
    [[nodiscard]] std::optional<QString> header(const QByteArray &name) const;
};

/// What came of a request: either a response with its body or an error, a reason for people without
/// a full stop that stands well in brackets.
struct Answer
{
    std::optional<QByteArray> body;
    std::optional<Response> response;
    std::optional<QString> error;
};

/// Performs one request and waits for its end; never on the main thread. A body shorter than
/// announced, larger than bodyLimit, or stopped is an error, and so are heads and redirects without
/// end. Never throws.
[[nodiscard]] Answer fetch(const Request &request, const std::stop_token &stop = {});

/// True for links to the California courts, whose terms do not allow automated checks: people
/// check them by hand.
[[nodiscard]] bool isHandChecked(const QString &url);

#ifdef QS_TEST_ROUTE
/// Where tests and the demonstration have every request go instead of to the agencies: a server on
/// this machine that answers for all of them. What users run is built without it.
struct TestRoute
{
    quint16 port = 0;
    QString authorityFile;                    ///< certificate of the authority to trust, PEM
    QHash<QString, quint16> portsByHost = {}; ///< hosts that go to another port
};
/// Absent ends it. Requests under way keep to the route that they began with.
void setTestRoute(const std::optional<TestRoute> &route);
#endif
} // namespace QSNet
