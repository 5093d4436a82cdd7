#include "notaryd/tokencheck.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

constexpr qint64 longestLifetime = 1200; // seconds
constexpr qint64 clockTolerance = 60;
constexpr int halfOfSignature = 32;
constexpr qsizetype longestToken = 16 * 1024;
constexpr qsizetype lengthOfScheme = 7; // with the blank

/// Base64url without padding (RFC 7515, section 2).
std::optional<QByteArray> decoded(const QByteArray &text)
{
    if (text.contains('='))
        return std::nullopt;
    const auto result =
        QByteArray::fromBase64Encoding(text,
                                       QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals
                                           | QByteArray::AbortOnBase64DecodingErrors);
    return result ? std::optional(*result) : std::nullopt;
}

QJsonObject objectIn(const QByteArray &part)
{
    const auto json = decoded(part);
    return json ? QJsonDocument::fromJson(*json).object() : QJsonObject();
}

QJsonObject enrolledKey(const QString &folder, const QString &keyId)
{
    static const QRegularExpression form(uR"(\A[A-Za-z0-9]{1,40}\z)"_s);
    QFile file(folder + u'/' + keyId + u".json"_s);
    if (!form.match(keyId).hasMatch() || !file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

/// The two halves of the signature in the DER form that OpenSSL takes.
QByteArray derOf(const QByteArray &raw)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(raw.constData());
    const std::unique_ptr<ECDSA_SIG, void (*)(ECDSA_SIG *)> signature(ECDSA_SIG_new(), ECDSA_SIG_free);
    ECDSA_SIG_set0(signature.get(), BN_bin2bn(bytes, halfOfSignature, nullptr),
                   BN_bin2bn(bytes + halfOfSignature, halfOfSignature, nullptr));
    unsigned char *der = nullptr;
    const int length = i2d_ECDSA_SIG(signature.get(), &der);
    const QByteArray result(reinterpret_cast<char *>(der), length);
    OPENSSL_free(der);
    return result;
}

bool isSignedBy(const QByteArray &publicKey, const QByteArray &text, const QByteArray &raw)
{
    const std::unique_ptr<BIO, int (*)(BIO *)> memory(
        BIO_new_mem_buf(publicKey.constData(), int(publicKey.size())), BIO_free);
    const std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)> key(
        PEM_read_bio_PUBKEY(memory.get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (raw.size() != 2 * halfOfSignature || !key
        || EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) != 1)
        return false;
    const QByteArray der = derOf(raw);
    return EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char *>(der.constData()),
                            size_t(der.size()), reinterpret_cast<const unsigned char *>(text.constData()),
                            size_t(text.size()))
        == 1;
}

/// The times may have fractions (RFC 7519, section 2, "NumericDate").
QString objectionToTimes(const QJsonObject &claims, const QDateTime &now)
{
    const auto seconds = double(now.toSecsSinceEpoch());
    const double issued = claims[u"iat"].toDouble(-1);
    const double expires = claims[u"exp"].toDouble(-1);
    if (expires < 0 || expires < issued || expires < seconds - clockTolerance)
        return u"the token has expired"_s;
    if (issued < 0 || issued > seconds + clockTolerance)
        return u"the token is not yet valid"_s;
    return expires - issued > longestLifetime ? u"the token lives too long"_s : QString();
}

/// An authorization's scheme is the same in upper and lower case (RFC 9110, section 11.1).
bool isBearer(const QByteArray &authorization)
{
    return authorization.left(lengthOfScheme).toLower() == "bearer ";
}

/// A team's key names its issuer, an individual one its user.
bool fitsKey(const QJsonObject &claims, const QJsonObject &key)
{
    const QString issuer = key[u"issuer_id"].toString();
    return issuer.isEmpty() ? !claims.contains(u"iss"_s) && claims[u"sub"].toString() == u"user"_s
                            : claims[u"iss"].toString() == issuer;
}

} // namespace

QString objectionToToken(const QByteArray &authorization, const QString &keyFolder, const QDateTime &now)
{
    const QByteArrayList parts = authorization.mid(lengthOfScheme).split('.');
    if (!isBearer(authorization) || authorization.size() > longestToken || parts.size() != 3)
        return u"there is no token"_s;
    const QJsonObject header = objectIn(parts.at(0));
    const QJsonObject claims = objectIn(parts.at(1));
    const QJsonObject key = enrolledKey(keyFolder, header[u"kid"].toString());
    if (header[u"alg"].toString() != u"ES256"_s || key.isEmpty())
        return u"the key is not known"_s;
    if (header.contains(u"crit"_s)) // RFC 7515, section 4.1.11
        return u"the token asks for what is not known"_s;
    const auto signature = decoded(parts.at(2));
    if (!signature
        || !isSignedBy(key[u"public_key"].toString().toLatin1(), parts.at(0) + '.' + parts.at(1), *signature))
        return u"the signature is wrong"_s;
    if (claims[u"aud"].toString() != u"appstoreconnect-v1"_s || !fitsKey(claims, key))
        return u"the token is meant for somebody else"_s;
    return objectionToTimes(claims, now);
}

QString keyIdIn(const QByteArray &authorization)
{
    return objectIn(authorization.mid(lengthOfScheme).split('.').first())[u"kid"].toString();
}

} // namespace notaryd
