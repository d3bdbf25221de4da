#pragma once

#include <QSet>
#include <QSslConfiguration>
#include <QString>

/// A certificate authority made for one test, by the openssl program in a folder of the caller's.
class AgencyAuthority final
{
public:
    /// The folder exists and holds no other authority.
    explicit AgencyAuthority(const QString &folder);

    /// PEM file of the authority's own certificate.
    [[nodiscard]] QString file() const { return path(QStringLiteral("authority.pem")); }
    /// A server's side of TLS, with a fresh certificate that names these hosts.
    [[nodiscard]] QSslConfiguration serverFor(const QSet<QString> &hosts) const;

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder + u'/' + name; }

    QString m_folder;
};
