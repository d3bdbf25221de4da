#include "QSSingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int patience = 3000;      ///< ms for the first program to listen, or a caller to speak
constexpr int longPatience = 10000; ///< ms for the first program to answer
constexpr int betweenTries = 50;    ///< ms
constexpr qint64 longestLine = 64;
const QByteArray comeForward = "come forward\n";
const QString lockFile = u"Quillstone.lock"_s;

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
      m_lock(QDir(dataFolder).filePath(lockFile)),
      m_lockPath(QDir(dataFolder).filePath(lockFile)),
      m_socketName(socketFor(dataFolder))
{
    m_lock.setStaleLockTime(0); // held for as long as the program runs; a dead one's is taken over
    if (m_lock.tryLock(0)) {
        becomeFirst();
    } else if (m_lock.error() == QLockFile::LockFailedError) {
        m_standing = callFirst() ? Standing::second : Standing::unsure;
    }
}

QSSingleInstance::~QSSingleInstance() = default;

void QSSingleInstance::takeOver()
{
    m_lock.removeStaleLockFile();
    if (!m_lock.tryLock(0)) {
        qWarning("\"%s\" stays with another program.", qUtf8Printable(m_lockPath));
    }
    becomeFirst();
}

void QSSingleInstance::becomeFirst()
{
    m_standing = Standing::first;
    QFile::setPermissions(m_lockPath, QFile::ReadOwner | QFile::WriteOwner);
    QLocalServer::removeServer(m_socketName); // a program that crashed leaves its socket behind
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *caller = m_server->nextPendingConnection()) {
            answer(caller);
        }
    });
    if (!m_server->listen(m_socketName)) {
        qWarning("Second starts can't be noticed: %s", qUtf8Printable(m_server->errorString()));
    }
}

void QSSingleInstance::answer(QLocalSocket *caller)
{
    // Whoever of the user calls, no more than a line is kept of it, and no longer than a while.
    caller->setReadBufferSize(longestLine);
    const auto read = [this, caller] {
        if (!caller->canReadLine() && caller->bytesAvailable() < longestLine) {
            return;
        }
        const bool forward = caller->readLine(longestLine) == comeForward;
        caller->abort();
        if (forward) {
            Q_EMIT broughtForward();
        }
    };
    connect(caller, &QLocalSocket::readyRead, this, read);
    connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    QTimer::singleShot(patience, caller, &QLocalSocket::abort);
    read(); // what came with the connection
}

bool QSSingleInstance::callFirst() const
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < patience) { // it may be between taking the lock and listening
        QLocalSocket socket;
        socket.connectToServer(m_socketName);
        if (socket.waitForConnected(betweenTries)) {
            socket.write(comeForward);
            // It is there; until its window stands it has no time to answer.
            return socket.waitForBytesWritten(patience) && socket.waitForDisconnected(longPatience);
        }
        QThread::msleep(betweenTries);
    }
    return false;
}
