#include "formats/timestampauthority.h"

#include <openssl/err.h>
#include <openssl/ts.h>

#include <ctime>

using platform::Result;

namespace toolchain {

namespace {

using Context = std::unique_ptr<TS_RESP_CTX, Freed<TS_RESP_CTX_free>>;
using Reply = std::unique_ptr<TS_RESP, Freed<TS_RESP_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>>;

void freeCertificates(STACK_OF(X509) * stack)
{
    sk_X509_pop_free(stack, X509_free);
}
using Stack = std::unique_ptr<STACK_OF(X509), Freed<freeCertificates>>;

/// The policy that clients of Apple's service ask for.
constexpr const char *policy = "1.2.3.4.5.6";
constexpr const EVP_MD *(*imprints[])() = {EVP_sha1, EVP_sha256, EVP_sha384, EVP_sha512};

ASN1_INTEGER *newSerialNumber(TS_RESP_CTX *, void *)
{
    constexpr qsizetype size = 8;
    const QByteArray bytes = randomBytes(size);
    const std::unique_ptr<BIGNUM, Freed<BN_free>> number(BN_bin2bn(bytesOf(bytes), size, nullptr));
    return BN_to_ASN1_INTEGER(number.get(), nullptr);
}

int tellTime(TS_RESP_CTX *, void *ahead, long *seconds, long *microseconds)
{
    *seconds = static_cast<long>(std::time(nullptr) + static_cast<std::chrono::seconds *>(ahead)->count());
    *microseconds = 0;
    return 1;
}

bool setSigner(TS_RESP_CTX *context, const IssuedKey &key)
{
    const Certificate leaf = certificateFrom(key.chain.value(0));
    const Stack others(sk_X509_new_null());
    for (const QByteArray &der : key.chain.mid(1))
        sk_X509_push(others.get(), certificateFrom(der).release());
    return leaf && TS_RESP_CTX_set_signer_cert(context, leaf.get()) == 1
        && TS_RESP_CTX_set_signer_key(context, key.key.get()) == 1
        && TS_RESP_CTX_set_certs(context, others.get()) == 1
        && TS_RESP_CTX_set_signer_digest(context, EVP_sha256()) == 1;
}

bool setRules(TS_RESP_CTX *context)
{
    const Object object(OBJ_txt2obj(policy, 1));
    bool isSet = TS_RESP_CTX_set_def_policy(context, object.get()) == 1;
    for (const auto digest : imprints)
        isSet = isSet && TS_RESP_CTX_add_md(context, digest()) == 1;
    return isSet;
}

} // namespace

Result<TimestampAuthority> TimestampAuthority::open(const QString &keychainFolder)
{
    auto key = Authority(keychainFolder).serviceKey(LeafPurpose::timestamp);
    return key ? Result<TimestampAuthority>(TimestampAuthority(*key)) : key.failure();
}

QByteArray TimestampAuthority::answer(const QByteArray &query, std::chrono::seconds ahead) const
{
    const Context context(TS_RESP_CTX_new());
    if (!setSigner(context.get(), m_key) || !setRules(context.get()))
        return {};
    TS_RESP_CTX_set_serial_cb(context.get(), newSerialNumber, nullptr);
    TS_RESP_CTX_set_time_cb(context.get(), tellTime, &ahead);
    const MemoryFile question = memoryOver(query);
    const Reply reply(TS_RESP_create_response(context.get(), question.get()));
    ERR_clear_error();
    return encoded<i2d_TS_RESP>(reply.get());
}

} // namespace toolchain
