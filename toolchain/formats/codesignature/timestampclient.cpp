#include "formats/codesignature/timestampclient.h"

#include <QUrl>

#include <openssl/err.h>
#include <openssl/ts.h>

#include <cstring>

#include "formats/codesignature/timestamppost.h"
#include "formats/codesignature/timestamptoken.h"
#include "formats/cryptography.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

using Query = std::unique_ptr<TS_REQ, Freed<TS_REQ_free>>;
using Reply = std::unique_ptr<TS_RESP, Freed<TS_RESP_free>>;
using Imprint = std::unique_ptr<TS_MSG_IMPRINT, Freed<TS_MSG_IMPRINT_free>>;
using Algorithm = std::unique_ptr<X509_ALGOR, Freed<X509_ALGOR_free>>;
using Integer = std::unique_ptr<ASN1_INTEGER, Freed<ASN1_INTEGER_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>>;

/// What codesign asks Apple's service for. Others know no such policy and would refuse.
const QString applePolicy = u"1.2.3.4.5.6"_s;

void setImprint(TS_REQ *query, const QByteArray &stamped, QCryptographicHash::Algorithm algorithm)
{
    const QByteArray digest = QCryptographicHash::hash(stamped, algorithm);
    const Imprint imprint(TS_MSG_IMPRINT_new());
    const Algorithm identifier(X509_ALGOR_new());
    const int nid = algorithm == QCryptographicHash::Sha1 ? NID_sha1
        : algorithm == QCryptographicHash::Sha512         ? NID_sha512
                                                          : NID_sha256;
    X509_ALGOR_set0(identifier.get(), OBJ_nid2obj(nid), V_ASN1_NULL, nullptr);
    TS_MSG_IMPRINT_set_algo(imprint.get(), identifier.get());
    QByteArray bytes = digest;
    TS_MSG_IMPRINT_set_msg(imprint.get(), reinterpret_cast<unsigned char *>(bytes.data()),
                           static_cast<int>(bytes.size()));
    TS_REQ_set_msg_imprint(query, imprint.get());
}

/// Eight bytes of which the first is not 0, so that the number comes back in as many.
QByteArray newNonce()
{
    constexpr int size = 8;
    QByteArray nonce = randomBytes(size);
    nonce[0] = static_cast<char>(nonce[0] | 1);
    return nonce;
}

void setNonce(TS_REQ *query, const QByteArray &nonce)
{
    const std::unique_ptr<BIGNUM, Freed<BN_free>> number(
        BN_bin2bn(bytesOf(nonce), static_cast<int>(nonce.size()), nullptr));
    const Integer integer(BN_to_ASN1_INTEGER(number.get(), nullptr));
    TS_REQ_set_nonce(query, integer.get());
}

void setPolicy(TS_REQ *query, const QString &policy)
{
    if (policy.isEmpty())
        return;
    const Object object(OBJ_txt2obj(policy.toLatin1().constData(), 1));
    TS_REQ_set_policy_id(query, object.get());
}

/// Why a service that answered gave no token.
QString refusalIn(TS_RESP *reply)
{
    const TS_STATUS_INFO *status = TS_RESP_get_status_info(reply);
    const MemoryFile text(BIO_new(BIO_s_mem()));
    TS_STATUS_INFO_print_bio(text.get(), const_cast<TS_STATUS_INFO *>(status));
    return QString::fromUtf8(writtenTo(text.get())).simplified().left(300);
}

bool isGranted(TS_RESP *reply)
{
    const ASN1_INTEGER *status = TS_STATUS_INFO_get0_status(TS_RESP_get_status_info(reply));
    const long number = ASN1_INTEGER_get(status);
    return number == TS_STATUS_GRANTED || number == TS_STATUS_GRANTED_WITH_MODS;
}

bool isApples(const QString &url)
{
    return QUrl(url).host() == QUrl(appleTimestampUrl()).host();
}

} // namespace

QString appleTimestampUrl()
{
    return u"http://timestamp.apple.com/ts01"_s;
}

TimestampQuery timestampQueryFor(const QByteArray &stamped, QCryptographicHash::Algorithm imprint,
                                 const QString &policy)
{
    const Query query(TS_REQ_new());
    const QByteArray nonce = newNonce();
    TS_REQ_set_version(query.get(), 1);
    setImprint(query.get(), stamped, imprint);
    setPolicy(query.get(), policy);
    setNonce(query.get(), nonce);
    TS_REQ_set_cert_req(query.get(), 1);
    return {encoded<i2d_TS_REQ>(query.get()), nonce};
}

Result<QByteArray> tokenInReply(const QByteArray &reply, const QByteArray &stamped, const QByteArray &nonce,
                                const TrustStore &store)
{
    const unsigned char *at = bytesOf(reply);
    const Reply answer(d2i_TS_RESP(nullptr, &at, static_cast<long>(reply.size())));
    ERR_clear_error();
    if (!answer)
        return Error{u"the answer is no time stamp"_s};
    if (!isGranted(answer.get()) || !TS_RESP_get_token(answer.get()))
        return Error{u"no time stamp was granted ("_s + refusalIn(answer.get()) + u')'};
    const QByteArray token = encoded<i2d_PKCS7>(TS_RESP_get_token(answer.get()));
    const auto stamp = checkTimestamp(token, stamped, store);
    if (!stamp)
        return stamp.failure();
    if (stamp->nonce != nonce)
        return Error{u"the time stamp answers another question"_s};
    return token;
}

Stamper timestampClient(const TimestampService &service)
{
    return [service](const QByteArray &value) -> Result<QByteArray> {
        const auto query =
            timestampQueryFor(value, service.imprint, isApples(service.url) ? applePolicy : QString());
        const auto reply = postTimestampQuery(service, query.der);
        if (!reply)
            return Error{
                u"The timestamp service is not available. (%1: %2)"_s.arg(service.url, reply.error())};
        auto token = tokenInReply(*reply, value, query.nonce, TrustStore::ofThisMachine());
        return token ? token : Error{service.url + u": "_s + token.error()};
    };
}

} // namespace toolchain
