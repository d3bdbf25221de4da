#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;

/// One running program for each user and data folder. The first start holds a lock file in the
/// data folder and listens on a local socket that only its user can reach; a later start sends it
/// the line that asks it to come forward, and knows by the end of the connection that it was heard.
/// Main thread only.
class QSSingleInstance final : public QObject
{
    Q_OBJECT

public:
    enum class Standing {
        first,  ///< no other program runs over the data folder
        second, ///< another one does, and was asked to come forward
        unsure  ///< the folder is locked, and nobody answers
    };

    /// Looks for a running program over the data folder and becomes it when there is none.
    explicit QSSingleInstance(const QString &dataFolder, QObject *parent = nullptr);
    ~QSSingleInstance() override;

    /// Where no lock file can be written nothing can be known, and this start counts as the first.
    [[nodiscard]] Standing standing() const { return m_standing; }
    /// Becomes the first, whoever left the lock: a program on another machine from which the folder
    /// was copied, or a crash in the middle of writing it. One that is still there keeps its lock;
    /// the database's own locks are between the two then.
    void takeOver();

Q_SIGNALS:
    /// A second start wants the window in front.
    void broughtForward();

private:
    void becomeFirst();
    void answer(QLocalSocket *caller);
    /// False when it does not answer in time.
    [[nodiscard]] bool callFirst() const;

    QLockFile m_lock;
    QString m_lockPath;
    QString m_socketName;
    std::unique_ptr<QLocalServer> m_server;
    Standing m_standing = Standing::first;
};
