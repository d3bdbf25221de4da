#include "AgencyConnection.h"

#include <QUrl>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
std::optional<QByteArray> header(const AgencyServer::Answer &answer, const QByteArray &name)
{
    const auto found = std::ranges::find_if(
        answer.headers, [&](const auto &field) { return field.first.toLower() == name; });
    return found == answer.headers.end() ? std::nullopt : std::optional(found->second);
}

AgencyServer::Request parsed(const QByteArray &head)
{
    AgencyServer::Request request;
    request.arrived = std::chrono::steady_clock::now();
    QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> first = lines.takeFirst().trimmed().split(' ');
    for (const QByteArray &line : std::as_const(lines)) {
        const qsizetype colon = line.indexOf(':');
        const QByteArray name = line.left(colon).trimmed().toLower();
        request.headers.insert(name, line.mid(colon + 1).trimmed());
        request.headerNames.append(name);
    }
    request.method = first.value(0);
    request.url = AgencyOffice::canonical(
        QString::fromUtf8("https://" + request.headers.value("host") + first.value(1)));
    return request;
}

bool unchangedFor(const AgencyServer::Request &request, const AgencyServer::Answer &answer)
{
    const auto names = [&](const QByteArray &asked, const QByteArray &field) {
        const auto value = header(answer, field);
        return value && request.headers.value(asked) == *value;
    };
    // The entity tag decides where the request gives both.
    return request.headers.contains("if-none-match") ? names("if-none-match", "etag")
                                                     : names("if-modified-since", "last-modified");
}

/// Turns the answer into the bytes "first-last" of itself that the request asks for.
void cutToRange(const QByteArray &range, AgencyServer::Answer &answer)
{
    const QList<QByteArray> ends = QByteArray(range).replace("bytes=", "").split('-');
    const qsizetype total = answer.body.size();
    const qsizetype first = ends.value(0).toLongLong();
    if (first >= total) {
        answer.status = 416;
        answer.body.clear();
        return;
    }
    const qsizetype last =
        ends.value(1).isEmpty() ? total - 1 : std::min(total - 1, ends[1].toLongLong());
    answer.status = 206;
    answer.body = answer.body.mid(first, last - first + 1);
    answer.headers.append({"Content-Range", "bytes " + QByteArray::number(first) + '-' +
                                                QByteArray::number(last) + '/' +
                                                QByteArray::number(total)});
}

/// The answer to just this request: conditions and ranges seen to.
AgencyServer::Answer suited(const AgencyServer::Request &request, AgencyServer::Answer answer)
{
    const bool plain = answer.status == 200;
    const QByteArray range = request.headers.value("range");
    if (plain && answer.honoursConditions && unchangedFor(request, answer)) {
        answer.status = 304;
        answer.body.clear();
    } else if (plain && answer.honoursRanges && request.method == "GET" && !range.isEmpty()) {
        cutToRange(range, answer);
    }
    return answer;
}

/// An answer that ends with its head, by its status.
bool isBare(const AgencyServer::Answer &answer)
{
    return answer.status == 204 || answer.status == 304;
}

QByteArray headOf(const AgencyServer::Answer &answer)
{
    if (answer.status == 0) {
        return {};
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " \r\n";
    for (const auto &[name, value] : answer.headers) {
        head += name + ": " + value + "\r\n";
    }
    if (!isBare(answer) && !answer.unannounced) {
        const qint64 size = answer.announced >= 0 ? answer.announced : answer.body.size();
        head += "Content-Length: " + QByteArray::number(size) + "\r\n";
    }
    return head + "\r\n";
}
} // namespace

AgencyConnection::AgencyConnection(QSslSocket *socket, AgencyOffice &office)
    : QObject(socket), m_socket(socket), m_office(office)
{
    connect(socket, &QSslSocket::readyRead, this, &AgencyConnection::read);
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    read(); // what came together with the handshake
}

void AgencyConnection::read()
{
    m_received += m_socket->readAll();
    const qsizetype end = m_received.indexOf("\r\n\r\n");
    if (end < 0 || m_busy) {
        return;
    }
    const AgencyServer::Request request = parsed(m_received.left(end));
    m_received.remove(0, end + 4);
    m_busy.emplace(m_office, QUrl(request.url).host());
    const AgencyServer::Answer answer = suited(request, m_office.take(request));
    if (!answer.silent) {
        QTimer::singleShot(answer.delay, this, [=, this] { reply(request, answer); });
    }
}

void AgencyConnection::reply(const AgencyServer::Request &request,
                             const AgencyServer::Answer &answer)
{
    m_socket->write(headOf(answer));
    m_hangUp = answer.unannounced || answer.cutAfter >= 0;
    const bool endsWithHead = answer.status != 0 && (request.method == "HEAD" || isBare(answer));
    m_rest = endsWithHead ? QByteArray() : answer.body;
    m_endless = endsWithHead ? QByteArray() : answer.endless;
    if (answer.cutAfter >= 0) {
        m_rest.truncate(answer.cutAfter);
    }
    if (answer.drip.count() == 0 && m_endless.isEmpty()) {
        sendPiece(m_rest.size());
        return;
    }
    m_drip.callOnTimeout(this, [this, size = answer.dripBytes] { sendPiece(size); });
    m_drip.start(answer.drip);
    sendPiece(answer.dripBytes);
}

void AgencyConnection::sendPiece(qsizetype size)
{
    constexpr qint64 enoughWaiting = 1 << 20;
    if (!m_endless.isEmpty() &&
        m_socket->bytesToWrite() + m_socket->encryptedBytesToWrite() > enoughWaiting) {
        return;
    }
    while (!m_endless.isEmpty() && m_rest.size() <= size) {
        m_rest += m_endless;
    }
    m_socket->write(m_rest.left(size));
    m_rest.remove(0, size);
    if (!m_rest.isEmpty()) {
        return;
    }
    m_drip.stop();
    m_drip.disconnect();
    m_busy.reset();
    if (m_hangUp) {
        m_socket->disconnectFromHost();
    } else {
        read();
    }
}
