#include "AgencyServer.h"

#include "AgencyAuthority.h"
#include "AgencyConnection.h"
#include "AgencyOffice.h"
#include "QSDirectory.h"
#include "QSNet.h"

#include <QDir>
#include <QSslServer>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QStringView untrustedDomain = u"bad.example";

bool isUntrusted(const QString &host)
{
    return host == untrustedDomain || host.endsWith(u'.' + untrustedDomain.toString());
}

/// A port with certificates of one authority. Lives on the server's thread.
class Listener final : public QSslServer
{
public:
    Listener(const AgencyAuthority &authority, AgencyOffice &office)
        : m_authority(authority), m_office(office)
    {
        connect(this, &QSslServer::pendingConnectionAvailable, this, &Listener::welcome);
        open();
    }

    void open()
    {
        if (!listen(QHostAddress::LocalHost, m_port)) {
            qFatal("No port to listen on: %s", qPrintable(errorString()));
        }
        m_port = serverPort();
    }
    void breakOff()
    {
        close();
        for (QSslSocket *socket : findChildren<QSslSocket *>()) {
            socket->abort();
        }
    }
    [[nodiscard]] quint16 port() const { return m_port; }

protected:
    void incomingConnection(qintptr socket) override
    {
        // Made when it is needed, so that scripts for many hosts cost one certificate.
        if (const QSet<QString> hosts = m_office.hosts(); hosts != m_certified) {
            setSslConfiguration(m_authority.serverFor(hosts));
            m_certified = hosts;
        }
        QSslServer::incomingConnection(socket);
    }

private:
    void welcome()
    {
        while (auto *socket = qobject_cast<QSslSocket *>(nextPendingConnection())) {
            new AgencyConnection(socket, m_office);
        }
    }

    const AgencyAuthority &m_authority;
    AgencyOffice &m_office;
    QSet<QString> m_certified;
    quint16 m_port = 0;
};

/// A folder inside the other one.
QString subfolder(const QTemporaryDir &folder, const QString &name)
{
    QDir(folder.path()).mkdir(name);
    return folder.filePath(name);
}
} // namespace

class AgencyServer::Private final
{
public:
    Private()
    {
        m_onThread.moveToThread(&m_thread);
        m_thread.start();
        for (const QSDirectory::Link &link : QSDirectory::shared().allLinks()) {
            m_office.addHost(QUrl(link.url).host());
        }
        onThread([this] {
            m_trusted = std::make_unique<Listener>(m_authority, m_office);
            m_untrusted = std::make_unique<Listener>(m_otherAuthority, m_office);
        });
        m_route = {.port = m_trusted->port(), .authorityFile = m_authority.file()};
        QSNet::setTestRoute(m_route);
    }
    ~Private()
    {
        QSNet::setTestRoute(std::nullopt);
        onThread([this] {
            m_trusted.reset();
            m_untrusted.reset();
        });
        m_thread.quit();
        m_thread.wait();
    }
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    void routeTo(const QString &url)
    {
        if (const QString host = QUrl(url).host(); isUntrusted(host)) {
            m_route.portsByHost.insert(host, m_untrusted->port());
            QSNet::setTestRoute(m_route);
        }
    }
    void breakOff()
    {
        onThread([this] {
            m_trusted->breakOff();
            m_untrusted->breakOff();
        });
    }
    void open()
    {
        onThread([this] {
            m_trusted->open();
            m_untrusted->open();
        });
    }
    [[nodiscard]] AgencyOffice &office() { return m_office; }
    [[nodiscard]] const QSNet::TestRoute &route() const { return m_route; }

private:
    template <typename Work>
    void onThread(const Work &work)
    {
        QMetaObject::invokeMethod(&m_onThread, work, Qt::BlockingQueuedConnection);
    }

    QTemporaryDir m_folder;
    AgencyAuthority m_authority{subfolder(m_folder, u"trusted"_s)};
    AgencyAuthority m_otherAuthority{subfolder(m_folder, u"untrusted"_s)};
    AgencyOffice m_office;
    QSNet::TestRoute m_route;
    QObject m_onThread;
    QThread m_thread;
    std::unique_ptr<Listener> m_trusted;
    std::unique_ptr<Listener> m_untrusted;
};

AgencyServer::Answer AgencyServer::Answer::pdf(const QByteArray &body, const QByteArray &etag)
{
    Answer answer{.body = body, .headers = {{"Content-Type", "application/pdf"}}};
    if (!etag.isEmpty()) {
        answer.headers.append({"ETag", etag});
    }
    return answer;
}

AgencyServer::Answer AgencyServer::Answer::html(const QByteArray &body, int status)
{
    return {
        .status = status, .body = body, .headers = {{"Content-Type", "text/html; charset=utf-8"}}};
}

AgencyServer::Answer AgencyServer::Answer::redirect(const QByteArray &location, int status)
{
    return {.status = status, .body = {}, .headers = {{"Location", location}}};
}

AgencyServer::Answer AgencyServer::Answer::refusal(int status)
{
    return html("<html>No. " + QByteArray::number(status) + "</html>", status);
}

AgencyServer::AgencyServer() : d(std::make_unique<Private>()) {}

AgencyServer::~AgencyServer() = default;

void AgencyServer::answer(const QString &url, const QList<Answer> &script)
{
    d->office().setScript(url, script);
    d->routeTo(url);
}

void AgencyServer::answerHead(const QString &url, const QList<Answer> &script)
{
    d->office().setHeadScript(url, script);
    d->routeTo(url);
}

void AgencyServer::answerOthers(const Answer &answer)
{
    d->office().setOthers(answer);
}

void AgencyServer::goAway()
{
    d->breakOff();
}

void AgencyServer::comeBack()
{
    d->open();
}

QList<AgencyServer::Request> AgencyServer::requests() const
{
    return d->office().requests();
}

void AgencyServer::forgetRequests()
{
    d->office().forgetRequests();
}

int AgencyServer::mostAtOnce(const QString &host) const
{
    return d->office().mostAtOnce(host);
}

QString AgencyServer::authorityFile() const
{
    return d->route().authorityFile;
}

quint16 AgencyServer::port() const
{
    return d->route().port;
}
