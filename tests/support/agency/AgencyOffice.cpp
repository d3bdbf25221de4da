#include "AgencyOffice.h"

#include <QUrl>

#include <algorithm>

AgencyOffice::Busy::Busy(AgencyOffice &office, const QString &host) : m_office(office), m_host(host)
{
    const QMutexLocker locker(&m_office.m_mutex);
    m_office.raise(m_host);
    m_office.raise({});
}

AgencyOffice::Busy::~Busy()
{
    const QMutexLocker locker(&m_office.m_mutex);
    --m_office.m_load[m_host].now;
    --m_office.m_load[{}].now;
}

void AgencyOffice::raise(const QString &host)
{
    Load &load = m_load[host];
    load.most = std::max(load.most, ++load.now);
}

void AgencyOffice::setScript(const QString &url, const QList<AgencyServer::Answer> &script)
{
    const QMutexLocker locker(&m_mutex);
    m_scripts.insert(canonical(url), script);
    addHosts(url, script);
}

void AgencyOffice::setHeadScript(const QString &url, const QList<AgencyServer::Answer> &script)
{
    const QMutexLocker locker(&m_mutex);
    m_headScripts.insert(canonical(url), script);
    addHosts(url, script);
}

void AgencyOffice::addHosts(const QString &url, const QList<AgencyServer::Answer> &script)
{
    m_hosts.insert(QUrl(url).host());
    for (const AgencyServer::Answer &answer : script) {
        for (const auto &[name, value] : answer.headers) {
            const QString host = QUrl(QString::fromUtf8(value)).host();
            if (name.toLower() == "location" && !host.isEmpty()) {
                m_hosts.insert(host);
            }
        }
    }
}

void AgencyOffice::setOthers(const AgencyServer::Answer &answer)
{
    const QMutexLocker locker(&m_mutex);
    m_others = answer;
}

void AgencyOffice::addHost(const QString &host)
{
    const QMutexLocker locker(&m_mutex);
    m_hosts.insert(host);
}

QSet<QString> AgencyOffice::hosts() const
{
    const QMutexLocker locker(&m_mutex);
    return m_hosts;
}

AgencyServer::Answer AgencyOffice::take(const AgencyServer::Request &request)
{
    const QMutexLocker locker(&m_mutex);
    m_requests.append(request);
    const bool ownScript = request.method == "HEAD" && m_headScripts.contains(request.url);
    Scripts &scripts = ownScript ? m_headScripts : m_scripts;
    const auto script = scripts.find(request.url);
    if (script == scripts.end() || script->isEmpty()) {
        return m_others;
    }
    return script->size() > 1 ? script->takeFirst() : script->first();
}

QList<AgencyServer::Request> AgencyOffice::requests() const
{
    const QMutexLocker locker(&m_mutex);
    return m_requests;
}

void AgencyOffice::forgetRequests()
{
    const QMutexLocker locker(&m_mutex);
    m_requests.clear();
    for (Load &load : m_load) {
        load.most = load.now;
    }
}

int AgencyOffice::mostAtOnce(const QString &host) const
{
    const QMutexLocker locker(&m_mutex);
    return m_load.value(host).most;
}

QString AgencyOffice::canonical(const QString &url)
{
    QUrl address(url);
    address.setFragment({});
    if (address.path().isEmpty()) {
        address.setPath(QStringLiteral("/"));
    }
    return address.toString(QUrl::FullyEncoded);
}
