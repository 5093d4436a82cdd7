#include "notaryd/webhook.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <openssl/evp.h>

#include "formats/authority.h"
#include "formats/notary/httpclient.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::notary;

namespace notaryd {

namespace {

constexpr int tries = 3;
constexpr Milliseconds firstPause{1'000};
constexpr Milliseconds longestTry{5'000};
constexpr qint64 largestReply = 64 * 1024;

QString timeText(const QDateTime &time)
{
    return time.toUTC().toString(u"yyyy-MM-dd'T'HH:mm:ss.zzz'Z'"_s);
}

QByteArray payloadOf(const NotaryRequest &request)
{
    const QJsonObject form{{u"completed_time"_s, timeText(request.decided)},
                           {u"event"_s, u"processing-complete"_s},
                           {u"start_time"_s, timeText(request.uploaded)},
                           {u"submission_id"_s, request.uuid},
                           {u"team_id"_s, request.team}};
    return QJsonDocument(form).toJson(QJsonDocument::Compact);
}

/// ECDSA in DER form over the payload's SHA-256; empty if it cannot be made.
QByteArray signatureOf(EVP_PKEY *key, const QByteArray &payload)
{
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    const auto *bytes = reinterpret_cast<const unsigned char *>(payload.constData());
    const auto length = std::size_t(payload.size());
    std::size_t room = 0;
    if (EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key) != 1
        || EVP_DigestSign(context.get(), nullptr, &room, bytes, length) != 1)
        return {};
    QByteArray signature(qsizetype(room), '\0');
    if (EVP_DigestSign(context.get(), reinterpret_cast<unsigned char *>(signature.data()), &room, bytes,
                       length)
        != 1)
        return {};
    signature.resize(qsizetype(room));
    return signature;
}

QByteArray pemOf(const QList<QByteArray> &chain)
{
    constexpr qsizetype lineLength = 64; // RFC 7468
    QByteArray pem;
    for (const QByteArray &certificate : chain) {
        const QByteArray text = certificate.toBase64();
        pem += "-----BEGIN CERTIFICATE-----\n";
        for (qsizetype start = 0; start < text.size(); start += lineLength)
            pem += text.mid(start, lineLength) + '\n';
        pem += "-----END CERTIFICATE-----\n";
    }
    return pem;
}

/// Empty if the authority of this machine gives no key.
QByteArray bodyFor(const NotaryRequest &request)
{
    const auto key = Authority(keychainFolder()).serviceKey(LeafPurpose::ticket);
    if (!key)
        return {};
    const QByteArray payload = payloadOf(request);
    const QJsonObject form{
        {u"payload"_s, QString::fromUtf8(payload)},
        {u"signature"_s, QString::fromLatin1(signatureOf(key->key.get(), payload).toBase64())},
        {u"cert_chain"_s, QString::fromLatin1(pemOf(key->chain).toBase64())}};
    return QJsonDocument(form).toJson(QJsonDocument::Compact);
}

HttpReply postOnce(const QString &target, const QByteArray &body)
{
    HttpRequest request;
    request.method = "POST";
    request.url = QUrl(target).toEncoded();
    request.headers = {{"Content-Type", "application/json"}};
    request.body = body;
    request.largestReply = largestReply;
    request.idleLimit = request.wholeLimit = longestTry;
    return HttpClient(readServiceConfig().valueOr({})).perform(request);
}

} // namespace

Webhook::Webhook()
    : m_worker([this] { work(); })
{
}

Webhook::~Webhook()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_worker.join();
}

void Webhook::tell(const NotaryRequest &request)
{
    if (request.webhooks.isEmpty())
        return;
    {
        const std::scoped_lock lock(m_mutex);
        m_waiting.push(request);
    }
    m_changed.notify_all();
}

void Webhook::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
        if (m_isEnding)
            return;
        const NotaryRequest request = m_waiting.front();
        m_waiting.pop();
        lock.unlock();
        post(request);
        lock.lock();
    }
}

bool Webhook::waitUnlessEnding(Milliseconds pause)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, pause, [this] { return m_isEnding; });
}

void Webhook::post(const NotaryRequest &request)
{
    const QByteArray body = bodyFor(request);
    for (const QString &target : request.webhooks) {
        if (!body.isEmpty())
            post(target, body);
    }
}

void Webhook::post(const QString &target, const QByteArray &body)
{
    for (int attempt = 0; attempt < tries; ++attempt) {
        if (attempt > 0 && !waitUnlessEnding(scaled(firstPause * (1 << attempt))))
            return;
        const HttpReply reply = postOnce(target, body);
        if (reply.isWhole() && reply.status >= 200 && reply.status < 300)
            return;
    }
}

} // namespace notaryd
