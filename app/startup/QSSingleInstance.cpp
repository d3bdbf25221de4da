#include "QSSingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int patience = 3000;   ///< ms for the first program to answer
constexpr int betweenTries = 50; ///< ms

/// A socket in the user's own runtime folder. The name is a digest, for a socket's path has to be
/// short however deep the data folder lies.
QString socketFor(const QString &dataFolder)
{
    const QByteArray place = QDir(dataFolder).canonicalPath().toUtf8();
    const QByteArray digest =
        QCryptographicHash::hash(place, QCryptographicHash::Sha256).toHex().left(20);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/quillstone-"_s +
           QString::fromLatin1(digest);
}
} // namespace

QSSingleInstance::QSSingleInstance(const QString &dataFolder, QObject *parent)
    : QObject(parent),
      m_lock(QDir(dataFolder).filePath(u"Quillstone.lock"_s)),
      m_socketName(socketFor(dataFolder))
{
    m_lock.setStaleLockTime(0); // held for as long as the program runs; a dead one's is taken over
    if (m_lock.tryLock(0)) {
        listen();
    } else if (m_lock.error() == QLockFile::LockFailedError) {
        m_first = false;
        if (!callFirst()) {
            qint64 process = 0;
            QString host;
            QString name;
            m_lock.getLockInfo(&process, &host, &name);
            qWarning("The program already runs as process %lld on %s and does not answer.",
                     static_cast<long long>(process), qUtf8Printable(host));
        }
    }
}

QSSingleInstance::~QSSingleInstance() = default;

void QSSingleInstance::listen()
{
    QLocalServer::removeServer(m_socketName); // a program that crashed leaves its socket behind
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *caller = m_server->nextPendingConnection()) {
            connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
            Q_EMIT broughtForward();
        }
    });
    if (!m_server->listen(m_socketName)) {
        qWarning("Second starts can't be noticed: %s", qUtf8Printable(m_server->errorString()));
    }
}

bool QSSingleInstance::callFirst() const
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < patience) { // it may be between taking the lock and listening
        QLocalSocket socket;
        socket.connectToServer(m_socketName);
        if (socket.waitForConnected(betweenTries)) {
            socket.disconnectFromServer();
            return true;
        }
        QThread::msleep(betweenTries);
    }
    return false;
}
