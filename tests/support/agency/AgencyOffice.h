#pragma once

#include "AgencyServer.h"

#include <QMutex>
#include <QSet>

/// What all connections of an AgencyServer share: the scripts and the record of what was asked. Any
/// thread may call it.
class AgencyOffice final
{
public:
    /// Counts a request as being answered for as long as it lives.
    class Busy final
    {
    public:
        Busy(AgencyOffice &office, const QString &host);
        ~Busy();
        Busy(const Busy &) = delete;
        Busy &operator=(const Busy &) = delete;

    private:
        AgencyOffice &m_office;
        QString m_host;
    };

    void setScript(const QString &url, const QList<AgencyServer::Answer> &script);
    void setHeadScript(const QString &url, const QList<AgencyServer::Answer> &script);
    void setOthers(const AgencyServer::Answer &answer);
    void addHost(const QString &host);

    /// Every host that may be asked for: the directory's and those of the scripts.
    [[nodiscard]] QSet<QString> hosts() const;
    /// Records the request; what it is answered.
    [[nodiscard]] AgencyServer::Answer take(const AgencyServer::Request &request);
    [[nodiscard]] QList<AgencyServer::Request> requests() const;
    void forgetRequests();
    [[nodiscard]] int mostAtOnce(const QString &host) const;

    /// The one way to write an address: with a path, without a fragment.
    [[nodiscard]] static QString canonical(const QString &url);

private:
    using Scripts = QHash<QString, QList<AgencyServer::Answer>>;
    struct Load
    {
        int now = 0;
        int most = 0;
    };

    void addHosts(const QString &url, const QList<AgencyServer::Answer> &script);
    void raise(const QString &host);

    mutable QMutex m_mutex;
    Scripts m_scripts;
    Scripts m_headScripts;
    AgencyServer::Answer m_others = AgencyServer::Answer::refusal(404);
    QList<AgencyServer::Request> m_requests;
    QHash<QString, Load> m_load; ///< by host; all of them under the empty name
    QSet<QString> m_hosts;
};
