#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>
#include <memory>

#include "formats/notary/serviceconfig.h"
#include "formats/notary/waits.h"

namespace toolchain::notary {

struct HttpHeader {
    QByteArray name;
    QByteArray value;
};

/// A piece of an open file that is sent as a request's body.
struct FilePiece {
    int descriptor = -1;
    qint64 offset = 0;
    qint64 length = 0;
};

enum class RedirectPolicy {
    refused,
    onceToHttps ///< without any of the request's headers; from plain http of this machine to the like, too
};

enum class PlainHttp {
    loopbackOnly,
    allowed ///< for what is signed by itself, as a time stamp is
};

struct HttpRequest {
    QByteArray method = "GET"; ///< as it stands on the wire
    QByteArray url; ///< already in percent form
    QList<HttpHeader> headers;
    QByteArray body; ///< sent with POST and PUT where there is no piece of a file
    FilePiece piece;
    qint64 largestReply = 5'000'000; ///< bytes; a longer body is a failure
    Milliseconds idleLimit{20'000}; ///< without a byte in either direction
    Milliseconds wholeLimit{150'000};
    RedirectPolicy redirects = RedirectPolicy::refused;
    PlainHttp plainHttp = PlainHttp::loopbackOnly;
    std::function<void(qint64 sent)> progress; ///< may be empty
    std::function<bool()>
        isWanted; ///< asked meanwhile; a request that is not any more breaks off; may be empty
};

/// What came back, or why nothing did.
struct HttpReply {
    int status = 0; ///< 0 if there was no whole reply
    QMap<QByteArray, QByteArray> headers; ///< names in lower case
    QByteArray body;
    int transportError = 0; ///< a CURLcode; 0 for a whole reply
    QString problem; ///< of the transport, for a person; no address and no secret in it
    QString peer; ///< "HOST:PORT" that was asked
    QList<QByteArray> secrets; ///< by which the request has proved itself; they stand in no text

    [[nodiscard]] bool isWhole() const { return transportError == 0; }
    /// The Date header; not valid if there is none.
    [[nodiscard]] QDateTime date() const;
};

/// HTTP/1.1 over TLS by libcurl; keeps its connection from one request to the next. The system's certificates
/// and the configuration's `ca` are trusted. For one thread at a time.
class HttpClient {
public:
    explicit HttpClient(const ServiceConfig &config);
    ~HttpClient();
    HttpClient(const HttpClient &) = delete;
    HttpClient &operator=(const HttpClient &) = delete;

    /// Blocks until the reply is whole or a limit is over. Never retries.
    [[nodiscard]] HttpReply perform(const HttpRequest &request);

private:
    class Handle;
    const std::unique_ptr<Handle> m_handle;
};

} // namespace toolchain::notary
