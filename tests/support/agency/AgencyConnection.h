#pragma once

#include "AgencyOffice.h"

#include <QObject>
#include <QSslSocket>
#include <QTimer>

#include <optional>

/// One browser's connection, which asks and is answered until either side has enough. Lives on the
/// server's thread, a child of its socket.
class AgencyConnection final : public QObject
{
public:
    AgencyConnection(QSslSocket *socket, AgencyOffice &office);

private:
    /// Takes the next request, if it has come whole and none is being answered.
    void read();
    void reply(const AgencyServer::Request &request, const AgencyServer::Answer &answer);
    void sendPiece(qsizetype size);

    QSslSocket *m_socket; ///< owns this object
    AgencyOffice &m_office;
    QByteArray m_received;
    QByteArray m_rest; ///< of the body, still to be sent
    QByteArray m_endless;
    QTimer m_drip;
    bool m_hangUp = false;
    std::optional<AgencyOffice::Busy> m_busy;
};
