#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;

/// One running program for each user and data folder. The first start holds a lock file in the
/// data folder and listens on a local socket that only its user can reach; a later start asks it to
/// come forward and then ends. Main thread only.
class QSSingleInstance final : public QObject
{
    Q_OBJECT

public:
    /// Looks for a running program over the data folder and becomes it when there is none.
    explicit QSSingleInstance(const QString &dataFolder, QObject *parent = nullptr);
    ~QSSingleInstance() override;

    /// False when another program runs; it has been asked to come forward then. Where no lock file
    /// can be written nothing can be known, and this start counts as the first.
    [[nodiscard]] bool isFirst() const { return m_first; }

Q_SIGNALS:
    /// A second start wants the window in front.
    void broughtForward();

private:
    void listen();
    /// False when it does not answer in time.
    [[nodiscard]] bool callFirst() const;

    QLockFile m_lock;
    QString m_socketName;
    std::unique_ptr<QLocalServer> m_server;
    bool m_first = true;
};
