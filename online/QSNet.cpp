#include "QSNet.h"

#include "QSHosts.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {
using Header = QPair<QByteArray, QByteArray>;

constexpr int redirectLimit = 10;
constexpr int lastAnswer = -1; ///< of those whose headers curl keeps
/// For all heads and for the pages of redirects; less than what curl itself takes of heads.
constexpr qint64 besidesLimit = qint64{256} * 1024;
/// What has to come in a request's slowTimeout.
constexpr qint64 leastBytes = 4096;
/// The longest wait for curl before the clock is looked at again.
constexpr milliseconds longestWait{1000};

const QString stoppedReason = u"it was stopped"_s;
const QString silentReason = u"the site did not answer in time"_s;
const QString slowReason = u"the site sends its answer too slowly"_s;
const QString endlessReason = u"the site's answer does not end"_s;
const QString tooLargeReason = u"the file is larger than %1 MB"_s.arg(QSNet::bodyLimit >> 20);
const QString brokenOffReason = u"the connection broke off before the end"_s;

/// Reasons that people meet, in their words. Everything else is told in curl's.
const std::array<std::pair<CURLcode, QString>, 14> reasons = {{
    {CURLE_URL_MALFORMAT, u"its link is not a proper web address"_s},
    {CURLE_UNSUPPORTED_PROTOCOL, u"its link is not a secure one (https)"_s},
    {CURLE_COULDNT_RESOLVE_PROXY, u"the network's proxy could not be found"_s},
    {CURLE_COULDNT_RESOLVE_HOST, u"the site could not be found"_s},
    {CURLE_COULDNT_CONNECT, u"the site could not be reached"_s},
    {CURLE_SSL_CONNECT_ERROR, u"no secure connection to the site could be made"_s},
    {CURLE_PEER_FAILED_VERIFICATION, u"the site could not prove that it is the right one"_s},
    {CURLE_GOT_NOTHING, u"the site hung up without an answer"_s},
    {CURLE_PARTIAL_FILE, brokenOffReason},
    {CURLE_RECV_ERROR, brokenOffReason},
    {CURLE_SEND_ERROR, brokenOffReason},
    {CURLE_OPERATION_TIMEDOUT, silentReason},
    {CURLE_TOO_MANY_REDIRECTS, u"the site passes requests on without end"_s},
    {CURLE_FILESIZE_EXCEEDED, tooLargeReason},
}};

QString reasonFor(CURLcode code, const char *details)
{
    const QString text = QString::fromUtf8(*details != '\0' ? details : curl_easy_strerror(code));
    const auto known = std::ranges::find(reasons, code, &std::pair<CURLcode, QString>::first);
    // A proxy that refuses to connect has the code of a connection that breaks off.
    const bool refused = code == CURLE_RECV_ERROR && text.contains(u"CONNECT"_s);
    if (known != reasons.end() && !refused) {
        return known->second;
    }
    return u"network problem: "_s + text;
}

#ifdef QS_TEST_ROUTE
struct Route
{
    std::mutex mutex;
    std::optional<QSNet::TestRoute> route;
};

Route &sharedRoute()
{
    static Route route;
    return route;
}
#endif

/// What all threads have in common: the names and TLS sessions that curl remembers. Lives until the
/// last thread that used it is gone.
class Shared final
{
public:
    static std::shared_ptr<Shared> instance()
    {
        static const std::shared_ptr<Shared> shared = std::make_shared<Shared>();
        return shared;
    }

    Shared()
    {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        m_handle = curl_share_init();
        curl_share_setopt(m_handle, CURLSHOPT_USERDATA, this);
        curl_share_setopt(m_handle, CURLSHOPT_LOCKFUNC, &Shared::lock);
        curl_share_setopt(m_handle, CURLSHOPT_UNLOCKFUNC, &Shared::unlock);
        curl_share_setopt(m_handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
        curl_share_setopt(m_handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    }
    ~Shared()
    {
        curl_share_cleanup(m_handle);
        curl_global_cleanup();
    }
    Shared(const Shared &) = delete;
    Shared &operator=(const Shared &) = delete;

    [[nodiscard]] CURLSH *handle() const { return m_handle; }

private:
    static void lock(CURL * /*easy*/, curl_lock_data data, curl_lock_access /*access*/, void *self)
    {
        static_cast<Shared *>(self)->m_mutexes.at(data).lock();
    }
    static void unlock(CURL * /*easy*/, curl_lock_data data, void *self)
    {
        static_cast<Shared *>(self)->m_mutexes.at(data).unlock();
    }

    CURLSH *m_handle = nullptr;
    std::array<std::mutex, CURL_LOCK_DATA_LAST> m_mutexes;
};

/// One thread's open connections, kept for its next request.
struct Connections
{
    std::shared_ptr<Shared> shared = Shared::instance();
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> multi{curl_multi_init(),
                                                                &curl_multi_cleanup};
};

class HeaderList final
{
public:
    HeaderList() = default;
    ~HeaderList() { curl_slist_free_all(m_list); }
    HeaderList(const HeaderList &) = delete;
    HeaderList &operator=(const HeaderList &) = delete;

    void append(const QByteArray &line)
    {
        if (curl_slist *longer = curl_slist_append(m_list, line.constData())) {
            m_list = longer;
        }
    }
    [[nodiscard]] curl_slist *list() const { return m_list; }

private:
    curl_slist *m_list = nullptr;
};

/// How long a transfer is waited for: its times begin anew with what comes, all but the last one.
class Patience final
{
public:
    explicit Patience(const QSNet::Request &request) : m_request(request) {}

    /// total: the bytes that have come since the beginning.
    void hear(qint64 total)
    {
        const auto now = steady_clock::now();
        if (total != m_total) {
            m_total = total;
            m_heard = now;
        }
        if (total - m_counted >= leastBytes) {
            m_counted = total;
            m_moved = now;
        }
    }
    /// What is left of it; nothing once it is over.
    [[nodiscard]] milliseconds left() const
    {
        return std::chrono::ceil<milliseconds>(std::min(silence(), slowness()) -
                                               steady_clock::now());
    }
    [[nodiscard]] QString reason() const
    {
        return silence() < slowness() ? silentReason : slowReason;
    }

private:
    using Time = steady_clock::time_point;
    [[nodiscard]] Time silence() const { return m_heard + m_request.idleTimeout; }
    [[nodiscard]] Time slowness() const
    {
        return std::min(m_moved + m_request.slowTimeout, m_begun + m_request.wholeTimeout);
    }

    const QSNet::Request &m_request;
    const Time m_begun = steady_clock::now();
    Time m_heard = m_begun;
    Time m_moved = m_begun; ///< at m_counted
    qint64 m_total = 0;
    qint64 m_counted = 0;
};

/// One request on its way.
class Transfer final
{
public:
    Transfer(const QSNet::Request &request, const Shared &shared);
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;

    /// Why it failed; absent when the site's answer is there.
    [[nodiscard]] std::optional<QString> run(CURLM *multi, const std::stop_token &stop);
    [[nodiscard]] QSNet::Response response() const;
    [[nodiscard]] QByteArray takeBody() { return std::move(m_body); }

private:
    void configure(CURLSH *share);
    void setHeaders();
    void followTestRoute();
    /// One question and its answer, which may be a redirect.
    [[nodiscard]] std::optional<QString> ask(CURLM *multi, const std::stop_token &stop);
    [[nodiscard]] std::optional<QString> drive(CURLM *multi, const std::stop_token &stop);
    [[nodiscard]] std::optional<QString> outcome(CURLM *multi) const;
    [[nodiscard]] bool hasEnough() const;
    /// Where the answer leads on to, whole; null when it is the last one.
    [[nodiscard]] const char *redirect() const;
    /// The same while the answer is still coming.
    [[nodiscard]] bool isRedirect() const;
    /// Of the latest answer; empty when it has none.
    [[nodiscard]] QByteArray header(const char *name) const;
    /// By a size announced, by chunks or by the protocol's own frames.
    [[nodiscard]] bool endIsTold() const;
    /// curl's way to hand over a piece of the body; any other number than its size ends it all.
    static size_t take(char *data, size_t one, size_t size, void *self) noexcept;
    /// The same for a line of a head.
    static size_t takeLine(char *line, size_t one, size_t size, void *self) noexcept;
    /// Counts what is not kept; the number to give curl.
    [[nodiscard]] size_t pass(size_t size) noexcept;

    const QSNet::Request &m_request;
    HeaderList m_headers;
    HeaderList m_route;
    std::array<char, CURL_ERROR_SIZE> m_details{};
    Patience m_patience;
    QByteArray m_body;
    qint64 m_besides = 0;  ///< bytes of heads and of redirects' pages
    bool m_cutOff = false; ///< by take(), for good or ill
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_easy{curl_easy_init(),
                                                               &curl_easy_cleanup};
};

Transfer::Transfer(const QSNet::Request &request, const Shared &shared)
    : m_request(request), m_patience(request)
{
    configure(shared.handle());
    setHeaders();
    followTestRoute();
}

void Transfer::configure(CURLSH *share)
{
    CURL *easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_SHARE, share);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, m_details.data());
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A name server that is silent must not hold up a request that has ended.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_URL, m_request.url.toUtf8().constData());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "https");
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(m_request.idleTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Transfer::take);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Transfer::takeLine);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    if (m_request.method == QSNet::Request::Method::head) {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    } else if (!m_request.enough) {
        curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, curl_off_t{QSNet::bodyLimit});
    }
}

void Transfer::setHeaders()
{
    const std::array<Header, 3> fixed = {{
        {"User-Agent", QSNet::userAgent.toUtf8()},
        {"Accept", "text/html,application/xhtml+xml,application/pdf;q=0.9,*/*;q=0.8"},
        {"Accept-Language", "en-US,en;q=0.9"},
    }};
    for (const auto &[name, value] : fixed) {
        m_headers.append(name + ": " + value);
    }
    for (const auto &[name, value] : m_request.headers) {
        const bool isFixed = std::ranges::any_of(fixed, [&name = name](const Header &header) {
            return header.first.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (!isFixed) {
            // A line end inside would begin a header of its own.
            m_headers.append(name.simplified() + ": " + value.simplified());
        }
    }
    curl_easy_setopt(m_easy.get(), CURLOPT_HTTPHEADER, m_headers.list());
}

void Transfer::followTestRoute()
{
#ifdef QS_TEST_ROUTE
    const std::scoped_lock locker(sharedRoute().mutex);
    const std::optional<QSNet::TestRoute> &route = sharedRoute().route;
    if (!route) {
        return;
    }
    const QByteArray here = ":127.0.0.1:";
    for (auto host = route->portsByHost.cbegin(); host != route->portsByHost.cend(); ++host) {
        m_route.append(host.key().toUtf8() + ':' + here + QByteArray::number(host.value()));
    }
    m_route.append(':' + here + QByteArray::number(route->port));
    curl_easy_setopt(m_easy.get(), CURLOPT_CONNECT_TO, m_route.list());
    curl_easy_setopt(m_easy.get(), CURLOPT_CAINFO, route->authorityFile.toUtf8().constData());
    curl_easy_setopt(m_easy.get(), CURLOPT_PROXY, "");
#endif
}

std::optional<QString> Transfer::run(CURLM *multi, const std::stop_token &stop)
{
    for (int redirects = 0; redirects <= redirectLimit; ++redirects) {
        if (std::optional<QString> error = ask(multi, stop)) {
            return error;
        }
        const QByteArray next = redirect();
        const bool isForbidden =
            m_request.isAutomatic && QSHosts::isHandChecked(QString::fromUtf8(next));
        if (next.isNull() || isForbidden) {
            return std::nullopt;
        }
        curl_easy_setopt(m_easy.get(), CURLOPT_URL, next.constData());
    }
    return reasonFor(CURLE_TOO_MANY_REDIRECTS, "");
}

std::optional<QString> Transfer::ask(CURLM *multi, const std::stop_token &stop)
{
    if (const CURLMcode code = curl_multi_add_handle(multi, m_easy.get()); code != CURLM_OK) {
        return QString::fromUtf8(curl_multi_strerror(code));
    }
    std::optional<QString> error = drive(multi, stop);
    curl_multi_remove_handle(multi, m_easy.get());
    return error;
}

std::optional<QString> Transfer::drive(CURLM *multi, const std::stop_token &stop)
{
    const std::stop_callback wake(stop, [multi] { curl_multi_wakeup(multi); });
    while (!stop.stop_requested()) {
        int running = 0;
        const CURLMcode code = curl_multi_perform(multi, &running);
        if (code != CURLM_OK) {
            return QString::fromUtf8(curl_multi_strerror(code));
        }
        if (running == 0) {
            return outcome(multi);
        }
        m_patience.hear(m_besides + m_body.size());
        const milliseconds left = m_patience.left();
        if (left.count() <= 0) {
            return m_patience.reason();
        }
        curl_multi_poll(multi, nullptr, 0, static_cast<int>(std::min(left, longestWait).count()),
                        nullptr);
    }
    return stoppedReason;
}

std::optional<QString> Transfer::outcome(CURLM *multi) const
{
    int others = 0;
    const CURLMsg *message = curl_multi_info_read(multi, &others);
    const CURLcode code = message != nullptr ? message->data.result : CURLE_FAILED_INIT;
    if (code == CURLE_OK || (m_cutOff && hasEnough())) {
        return std::nullopt;
    }
    if (m_besides > besidesLimit) {
        return endlessReason;
    }
    return m_cutOff ? tooLargeReason : reasonFor(code, m_details.data());
}

bool Transfer::hasEnough() const
{
    return m_request.enough && m_body.size() >= *m_request.enough;
}

const char *Transfer::redirect() const
{
    const char *url = nullptr;
    curl_easy_getinfo(m_easy.get(), CURLINFO_REDIRECT_URL, &url);
    return url;
}

bool Transfer::isRedirect() const
{
    constexpr long first = 300;
    constexpr long last = 399;
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return status >= first && status <= last && !header("Location").isEmpty();
}

QByteArray Transfer::header(const char *name) const
{
    curl_header *found = nullptr;
    const CURLHcode code =
        curl_easy_header(m_easy.get(), name, 0, CURLH_HEADER, lastAnswer, &found);
    return code == CURLHE_OK ? found->value : QByteArray();
}

size_t Transfer::take(char *data, size_t /*one*/, size_t size, void *self) noexcept
{
    auto *transfer = static_cast<Transfer *>(self);
    if (transfer->isRedirect()) {
        return transfer->pass(size); // its page is for browsers that don't follow
    }
    const qint64 wanted = transfer->m_request.enough.value_or(QSNet::bodyLimit);
    const qint64 room = std::min(wanted, QSNet::bodyLimit) - transfer->m_body.size();
    const qint64 came = static_cast<qint64>(size);
    transfer->m_body.append(data, std::min(room, came));
    curl_off_t announced = -1;
    curl_easy_getinfo(transfer->m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    // A body that ends just here is left to end, because that keeps the connection.
    const bool goesOn = announced != transfer->m_body.size();
    transfer->m_cutOff = came > room || (transfer->hasEnough() && goesOn);
    return transfer->m_cutOff ? 0 : size;
}

size_t Transfer::takeLine(char * /*line*/, size_t /*one*/, size_t size, void *self) noexcept
{
    return static_cast<Transfer *>(self)->pass(size);
}

size_t Transfer::pass(size_t size) noexcept
{
    m_besides += static_cast<qint64>(size);
    return m_besides > besidesLimit ? 0 : size;
}

bool Transfer::endIsTold() const
{
    curl_off_t announced = -1;
    long version = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    curl_easy_getinfo(m_easy.get(), CURLINFO_HTTP_VERSION, &version);
    return announced >= 0 || version >= CURL_HTTP_VERSION_2_0 ||
           header("Transfer-Encoding").toLower().contains("chunked");
}

QSNet::Response Transfer::response() const
{
    long status = 0;
    const char *url = nullptr;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(m_easy.get(), CURLINFO_EFFECTIVE_URL, &url);
    QSNet::Response response{.status = static_cast<int>(status),
                             .finalURL = QString::fromUtf8(url),
                             .headers = {},
                             .endIsTold = endIsTold()};

    curl_header *header = nullptr;
    while ((header = curl_easy_nextheader(m_easy.get(), CURLH_HEADER, lastAnswer, header)) !=
           nullptr) {
        QByteArray &value = response.headers[QByteArray(header->name).toLower()];
        value += (value.isEmpty() ? "" : ", ") + QByteArray(header->value);
    }
    return response;
}
} // namespace

std::optional<QString> QSNet::Response::header(const QByteArray &name) const
{
    const auto found = headers.constFind(name.toLower());
    return found == headers.cend() ? std::nullopt : std::optional(QString::fromUtf8(*found));
}

QSNet::Answer QSNet::fetch(const Request &request, const std::stop_token &stop)
{
    thread_local const Connections connections;
    Transfer transfer(request, *connections.shared);
    if (std::optional<QString> error = transfer.run(connections.multi.get(), stop)) {
        return {.body = {}, .response = {}, .error = std::move(error)};
    }
    return {.body = transfer.takeBody(), .response = transfer.response(), .error = {}};
}

bool QSNet::isHandChecked(const QString &url)
{
    return QSHosts::isHandChecked(url);
}

#ifdef QS_TEST_ROUTE
void QSNet::setTestRoute(const std::optional<TestRoute> &route)
{
    const std::scoped_lock locker(sharedRoute().mutex);
    sharedRoute().route = route;
}
#endif
