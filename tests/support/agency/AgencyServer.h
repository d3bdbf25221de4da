#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

#include <chrono>
#include <memory>

/// Plays every agency: a TLS server on loopback with an authority of its own, on a thread of its
/// own, to which QSNet is routed while this object lives. An address without a script answers 404.
class AgencyServer final
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    /// What one request is answered. Content-Length is sent by itself; a body shorter than
    /// announced leaves the connection open and silent.
    struct Answer
    {
        int status = 200;
        QByteArray body = {};
        Headers headers = {}; ///< for example Content-Type, ETag, Location
        /// With an "ETag" or "Last-Modified" among the headers, a request that names it gets 304.
        bool honoursConditions = true;
        /// A request for a range of bytes gets 206 and only those.
        bool honoursRanges = true;
        qint64 announced = -1;              ///< Content-Length to send instead of the true one
        bool unannounced = false;           ///< no Content-Length; hanging up ends the body
        qsizetype cutAfter = -1;            ///< hangs up after so many bytes of the body
        std::chrono::milliseconds delay{0}; ///< before the first byte
        std::chrono::milliseconds drip{0};  ///< between pieces of the body
        qsizetype dripBytes = 1;            ///< size of a piece
        bool silent = false;                ///< takes the request and never says a word
        /// Comes after the body over and over, in pieces like those of a drip, until the other side
        /// hangs up. A status of 0 sends no head, so that body and this are the whole answer.
        QByteArray endless = {};

        [[nodiscard]] static Answer pdf(const QByteArray &body, const QByteArray &etag = {});
        [[nodiscard]] static Answer html(const QByteArray &body, int status = 200);
        [[nodiscard]] static Answer redirect(const QByteArray &location, int status = 301);
        [[nodiscard]] static Answer refusal(int status);
    };

    /// A request as it arrived; header names in lower case.
    struct Request
    {
        QByteArray method;
        QString url; ///< "https://host/path"
        QHash<QByteArray, QByteArray> headers;
        QList<QByteArray> headerNames; ///< in the order of the request
        std::chrono::steady_clock::time_point arrived;
    };

    /// Hosts of the shipped directory, of scripts and of their redirects show a certificate that
    /// the authority gave them; one below "bad.example" that of an authority that nobody trusts.
    AgencyServer();
    ~AgencyServer();
    AgencyServer(const AgencyServer &) = delete;
    AgencyServer &operator=(const AgencyServer &) = delete;

    /// The answers to requests for this address, first to last; the last one stays.
    void answer(const QString &url, const QList<Answer> &script);
    /// The same for HEAD alone, which otherwise gets the answers without their bodies.
    void answerHead(const QString &url, const QList<Answer> &script);
    /// For every address without a script.
    void answerOthers(const Answer &answer);
    /// The network is pulled: connections break at once, new ones are refused, until comeBack().
    void goAway();
    void comeBack();

    [[nodiscard]] QList<Request> requests() const;
    void forgetRequests();
    /// The most requests that were being answered at one time, of all hosts or of one.
    [[nodiscard]] int mostAtOnce(const QString &host = {}) const;

    /// PEM file of the authority, for another program that is to trust the server.
    [[nodiscard]] QString authorityFile() const;
    [[nodiscard]] quint16 port() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
