#include "AgencyAuthority.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>

using namespace Qt::Literals::StringLiterals;

namespace {
QByteArray contents(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("%s could not be read", qPrintable(path));
    }
    return file.readAll();
}

/// Makes "name.pem" and "name.key" in the folder, with these extensions of X.509.
void makeCertificate(const QString &folder, const QString &name, const QByteArray &extensions,
                     const QStringList &issuer)
{
    QFile config(folder + u"/openssl.cnf"_s);
    if (!config.open(QIODevice::WriteOnly)) {
        qFatal("%s could not be written", qPrintable(config.fileName()));
    }
    config.write("[req]\nprompt=no\ndistinguished_name=subject\nx509_extensions=extensions\n"
                 "[subject]\nCN=" +
                 name.toUtf8() + "\n[extensions]\n" + extensions + '\n');
    config.close();

    QProcess openssl;
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.setWorkingDirectory(folder);
    openssl.start(u"openssl"_s,
                  QStringList{u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s,
                              u"ec_paramgen_curve:P-256"_s, u"-noenc"_s, u"-days"_s, u"30"_s,
                              u"-config"_s, config.fileName(), u"-keyout"_s, name + u".key"_s,
                              u"-out"_s, name + u".pem"_s} +
                      issuer);
    if (!openssl.waitForFinished() || openssl.exitCode() != 0) {
        qFatal("openssl made no certificate: %s", openssl.readAll().constData());
    }
}
} // namespace

AgencyAuthority::AgencyAuthority(const QString &folder) : m_folder(folder)
{
    makeCertificate(m_folder, u"authority"_s, "basicConstraints=critical,CA:TRUE", {});
}

QSslConfiguration AgencyAuthority::serverFor(const QSet<QString> &hosts) const
{
    QByteArray extensions = "basicConstraints=critical,CA:FALSE\nsubjectAltName=@names\n[names]\n";
    int number = 0;
    for (const QString &host : hosts) {
        extensions += "DNS." + QByteArray::number(++number) + '=' + host.toUtf8() + '\n';
    }
    makeCertificate(m_folder, u"server"_s, extensions,
                    {u"-CA"_s, u"authority.pem"_s, u"-CAkey"_s, u"authority.key"_s});

    QSslConfiguration server = QSslConfiguration::defaultConfiguration();
    server.setPeerVerifyMode(QSslSocket::VerifyNone);
    server.setLocalCertificate(QSslCertificate(contents(path(u"server.pem"_s))));
    server.setPrivateKey(QSslKey(contents(path(u"server.key"_s)), QSsl::Ec));
    return server;
}
