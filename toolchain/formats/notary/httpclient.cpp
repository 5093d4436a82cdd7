#include "formats/notary/httpclient.h"

#include <QFile>

#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::notary {

namespace {

using Clock = std::chrono::steady_clock;

constexpr qint64 largestHeaders = 256 * 1024;
constexpr long connectSeconds = 20;
constexpr qint64 leastInvitationSeconds = 10; // for the service to ask for the body, or to refuse it
constexpr long uploadBuffer = 512 * 1024;
// Those of RFC 8446; the first takes a sixth less time than the second, on both sides.
constexpr const char *cheapestFirst =
    "TLS_AES_128_GCM_SHA256:TLS_AES_256_GCM_SHA384:TLS_CHACHA20_POLY1305_SHA256";

/// One request under way; what the callbacks of libcurl work on.
struct Exchange {
    const HttpRequest &request;
    HttpReply reply;
    qint64 sentOfBody = 0;
    qint64 headerBytes = 0;
    qint64 moved = -1;
    bool isTooLarge = false;
    bool isIdle = false;
    bool isUnreadable = false;
    Clock::time_point lastMove = Clock::now();
};

size_t takeBody(char *bytes, size_t, size_t length, void *user)
{
    auto &exchange = *static_cast<Exchange *>(user);
    if (exchange.reply.body.size() + qint64(length) > exchange.request.largestReply) {
        exchange.isTooLarge = true;
        return 0;
    }
    exchange.reply.body.append(bytes, qsizetype(length));
    return length;
}

size_t takeHeader(char *bytes, size_t, size_t length, void *user)
{
    auto &exchange = *static_cast<Exchange *>(user);
    exchange.headerBytes += qint64(length);
    const QByteArray line = QByteArray(bytes, qsizetype(length)).trimmed();
    if (line.startsWith("HTTP/"))
        exchange.reply.headers.clear(); // those of an interim reply
    const qsizetype colon = line.indexOf(':');
    if (colon > 0)
        exchange.reply.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    return exchange.headerBytes > largestHeaders ? 0 : length;
}

size_t giveBody(char *bytes, size_t, size_t room, void *user)
{
    auto &exchange = *static_cast<Exchange *>(user);
    const FilePiece &piece = exchange.request.piece;
    const qint64 wanted = std::min(qint64(room), piece.length - exchange.sentOfBody);
    if (wanted <= 0)
        return 0;
    const ssize_t length =
        pread(piece.descriptor, bytes, size_t(wanted), off_t(piece.offset + exchange.sentOfBody));
    if (length <= 0) {
        exchange.isUnreadable = true;
        return CURL_READFUNC_ABORT;
    }
    exchange.sentOfBody += length;
    return size_t(length);
}

int seekBody(void *user, curl_off_t offset, int)
{
    static_cast<Exchange *>(user)->sentOfBody = offset;
    return CURL_SEEKFUNC_OK;
}

int watch(void *user, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent)
{
    auto &exchange = *static_cast<Exchange *>(user);
    if (exchange.request.isWanted && !exchange.request.isWanted())
        return 1;
    const qint64 moved = received + sent + exchange.headerBytes;
    if (moved != exchange.moved) {
        exchange.moved = moved;
        exchange.lastMove = Clock::now();
        if (exchange.request.progress)
            exchange.request.progress(sent);
    }
    exchange.isIdle = Clock::now() - exchange.lastMove > exchange.request.idleLimit;
    return exchange.isIdle ? 1 : 0;
}

/// What libcurl says, without the address that some of its texts hold.
QString problemOf(CURLcode code, const Exchange &exchange)
{
    if (exchange.isTooLarge)
        return u"the reply has more than %1 bytes"_s.arg(exchange.request.largestReply);
    if (exchange.isIdle)
        return u"nothing came for %1 seconds"_s.arg(double(exchange.request.idleLimit.count()) / 1000);
    if (exchange.isUnreadable)
        return u"the file became shorter while it was being sent"_s;
    if (code == CURLE_OPERATION_TIMEDOUT)
        return u"no whole reply came in time"_s;
    if (code == CURLE_PEER_FAILED_VERIFICATION)
        return u"the service's certificate is not trusted"_s;
    return QString::fromUtf8(curl_easy_strerror(code));
}

/// The certificates of the configuration beside those of the system. A file of PEM is given to libcurl by
/// name where the system's are found in a folder; libcurl then takes both.
void trust(CURL *curl, const QString &ca)
{
    if (!ca.isEmpty())
        curl_easy_setopt(curl, CURLOPT_CAINFO, QFile::encodeName(ca).constData());
}

/// Whether the environment names a proxy on this machine.
bool hasLoopbackProxy()
{
    for (const char *variable : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return isLoopback(QUrl::fromUserInput(value).host());
    }
    return false;
}

/// The words of a header, or the values of a query, that nobody guesses.
QList<QByteArray> longWords(QByteArray text)
{
    constexpr qsizetype leastSecret = 16;
    QList<QByteArray> words;
    for (const char separator : QByteArrayView(",&="))
        text.replace(separator, ' ');
    for (const QByteArray &word : text.split(' ')) {
        if (word.size() >= leastSecret)
            words << word << QByteArray::fromPercentEncoding(word);
    }
    return words;
}

QList<QByteArray> secretsOf(const HttpRequest &request)
{
    const qsizetype query = request.url.indexOf('?');
    QList<QByteArray> secrets = longWords(query < 0 ? QByteArray() : request.url.sliced(query + 1));
    for (const HttpHeader &header : request.headers) {
        const QByteArray name = header.name.toLower();
        if (name == "authorization")
            secrets += longWords(header.value);
        if (name == "x-amz-security-token")
            secrets.append(header.value);
    }
    return secrets;
}

/// Whether a redirect may be followed: no other machine leads to plain services of this one.
bool mayLead(const QUrl &asked, const QUrl &target)
{
    return target.scheme() == u"https"_s || (target.scheme() == asked.scheme() && isAcceptable(target));
}

void ensureLibrary()
{
    static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    static_cast<void>(initialised);
}

} // namespace

QDateTime HttpReply::date() const
{
    const auto text = headers.value("date");
    const time_t seconds = text.isEmpty() ? -1 : curl_getdate(text.constData(), nullptr);
    return seconds < 0 ? QDateTime() : QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

class HttpClient::Handle {
public:
    explicit Handle(const ServiceConfig &config)
        : m_config(config)
        , m_curl((ensureLibrary(), curl_easy_init()))
    {
    }
    ~Handle() { curl_easy_cleanup(m_curl); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    HttpReply perform(const HttpRequest &request)
    {
        Exchange exchange{.request = request, .reply = {}};
        exchange.reply.peer = hostAndPort(QString::fromUtf8(request.url));
        exchange.reply.secrets = secretsOf(request);
        curl_easy_reset(m_curl);
        setAddress(request);
        setLimits(request);
        setCallbacks(exchange);
        setBody(request);
        curl_slist *headers = headerList(request);
        curl_easy_setopt(m_curl, CURLOPT_HTTPHEADER, headers);
        const CURLcode code = curl_easy_perform(m_curl);
        curl_slist_free_all(headers);
        return finished(exchange, code);
    }

private:
    void setAddress(const HttpRequest &request)
    {
        const bool isLocal = isLoopback(QUrl::fromEncoded(request.url).host());
        const bool takesPlain = isLocal || request.plainHttp == PlainHttp::allowed;
        curl_easy_setopt(m_curl, CURLOPT_URL, request.url.constData());
        curl_easy_setopt(m_curl, CURLOPT_PROTOCOLS_STR, takesPlain ? "https,http" : "https");
        curl_easy_setopt(m_curl, CURLOPT_REDIR_PROTOCOLS_STR, "https");
        curl_easy_setopt(m_curl, CURLOPT_FOLLOWLOCATION, 0L);
        curl_easy_setopt(m_curl, CURLOPT_PATH_AS_IS, 1L);
        curl_easy_setopt(m_curl, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        curl_easy_setopt(m_curl, CURLOPT_SSLVERSION, long(CURL_SSLVERSION_TLSv1_2));
        curl_easy_setopt(m_curl, CURLOPT_TLS13_CIPHERS, cheapestFirst);
        curl_easy_setopt(m_curl, CURLOPT_USERAGENT, "sealwright-altool");
        trust(m_curl, m_config.ca);
        if (!m_config.proxy.isEmpty())
            curl_easy_setopt(m_curl, CURLOPT_PROXY, m_config.proxy.toUtf8().constData());
        else if (isLocal && !hasLoopbackProxy()) // no other machine's proxy reaches this one's loopback
            curl_easy_setopt(m_curl, CURLOPT_NOPROXY, "*");
    }

    void setLimits(const HttpRequest &request)
    {
        const auto connect = std::min<qint64>(connectSeconds * 1000, request.idleLimit.count());
        curl_easy_setopt(m_curl, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(m_curl, CURLOPT_CONNECTTIMEOUT_MS, long(connect));
        curl_easy_setopt(m_curl, CURLOPT_TIMEOUT_MS, long(std::max<qint64>(1, request.wholeLimit.count())));
        const auto invitation =
            std::max<qint64>(leastInvitationSeconds * 1000, request.idleLimit.count() / 2);
        curl_easy_setopt(m_curl, CURLOPT_EXPECT_100_TIMEOUT_MS, long(invitation));
        curl_easy_setopt(m_curl, CURLOPT_TCP_KEEPALIVE, 1L);
        curl_easy_setopt(m_curl, CURLOPT_UPLOAD_BUFFERSIZE, uploadBuffer);
    }

    void setCallbacks(Exchange &exchange)
    {
        curl_easy_setopt(m_curl, CURLOPT_WRITEFUNCTION, takeBody);
        curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &exchange);
        curl_easy_setopt(m_curl, CURLOPT_HEADERFUNCTION, takeHeader);
        curl_easy_setopt(m_curl, CURLOPT_HEADERDATA, &exchange);
        curl_easy_setopt(m_curl, CURLOPT_READFUNCTION, giveBody);
        curl_easy_setopt(m_curl, CURLOPT_READDATA, &exchange);
        curl_easy_setopt(m_curl, CURLOPT_SEEKFUNCTION, seekBody);
        curl_easy_setopt(m_curl, CURLOPT_SEEKDATA, &exchange);
        curl_easy_setopt(m_curl, CURLOPT_XFERINFOFUNCTION, watch);
        curl_easy_setopt(m_curl, CURLOPT_XFERINFODATA, &exchange);
        curl_easy_setopt(m_curl, CURLOPT_NOPROGRESS, 0L);
    }

    void setBody(const HttpRequest &request)
    {
        if (request.piece.descriptor >= 0) {
            curl_easy_setopt(m_curl, CURLOPT_UPLOAD, 1L);
            curl_easy_setopt(m_curl, CURLOPT_INFILESIZE_LARGE, curl_off_t(request.piece.length));
        } else if (request.method != "GET" && request.method != "DELETE") {
            curl_easy_setopt(m_curl, CURLOPT_POST, 1L);
            curl_easy_setopt(m_curl, CURLOPT_POSTFIELDS, request.body.constData());
            curl_easy_setopt(m_curl, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request.body.size()));
        }
        curl_easy_setopt(m_curl, CURLOPT_CUSTOMREQUEST, request.method.constData());
    }

    static curl_slist *headerList(const HttpRequest &request)
    {
        curl_slist *list = nullptr;
        for (const HttpHeader &header : request.headers)
            list = curl_slist_append(list, (header.name + ": " + header.value).constData());
        const bool isUpload = request.piece.descriptor >= 0;
        return curl_slist_append(list, isUpload ? "Expect: 100-continue" : "Expect:");
    }

    HttpReply finished(Exchange &exchange, CURLcode code)
    {
        long status = 0;
        curl_easy_getinfo(m_curl, CURLINFO_RESPONSE_CODE, &status);
        if (code != CURLE_OK && refusedEarly(code, status, exchange))
            code = CURLE_OK;
        exchange.reply.transportError = int(code);
        if (code == CURLE_OK)
            exchange.reply.status = int(status);
        else
            exchange.reply.problem = problemWith(code, exchange);
        return exchange.reply;
    }

    [[nodiscard]] QString problemWith(CURLcode code, const Exchange &exchange) const
    {
        long connected = 0;
        curl_easy_getinfo(m_curl, CURLINFO_HTTP_CONNECTCODE, &connected);
        return connected >= 300 ? u"the proxy refuses the connection (HTTP %1)"_s.arg(connected)
                                : problemOf(code, exchange);
    }

    /// A service may answer and close before it has read the body; what it said counts, not that the rest of
    /// the body could not be sent.
    static bool refusedEarly(CURLcode code, long status, const Exchange &exchange)
    {
        const bool isSending = code == CURLE_SEND_ERROR || code == CURLE_ABORTED_BY_CALLBACK;
        return isSending && status >= 400 && !exchange.isIdle && !exchange.isUnreadable;
    }

    const ServiceConfig m_config;
    CURL *const m_curl;
};

HttpClient::HttpClient(const ServiceConfig &config)
    : m_handle(std::make_unique<Handle>(config))
{
}

HttpClient::~HttpClient() = default;

HttpReply HttpClient::perform(const HttpRequest &request)
{
    HttpReply reply = m_handle->perform(request);
    const QByteArray location = reply.headers.value("location");
    const bool isRedirect = reply.status >= 301 && reply.status <= 308 && !location.isEmpty();
    const QUrl asked = QUrl::fromEncoded(request.url);
    const QUrl target = asked.resolved(QUrl::fromEncoded(location));
    if (!isRedirect || request.redirects == RedirectPolicy::refused || !mayLead(asked, target))
        return reply;
    HttpRequest onward = request;
    onward.url = target.toEncoded();
    onward.headers.clear();
    return m_handle->perform(onward);
}

} // namespace toolchain::notary
