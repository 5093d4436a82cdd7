#include "formats/keychain/importing.h"

#include <openssl/err.h>
#include <openssl/pkcs12.h>
#include <openssl/provider.h>

#include "formats/cryptography.h"
#include "formats/keychain/stretching.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

using Container = std::unique_ptr<PKCS12, Freed<PKCS12_free>>;
using KeyInfo = std::unique_ptr<PKCS8_PRIV_KEY_INFO, Freed<PKCS8_PRIV_KEY_INFO_free>>;

void freeSafes(STACK_OF(PKCS7) * safes)
{
    sk_PKCS7_pop_free(safes, PKCS7_free);
}
using Safes = std::unique_ptr<STACK_OF(PKCS7), Freed<freeSafes>>;

void freeBags(STACK_OF(PKCS12_SAFEBAG) * bags)
{
    sk_PKCS12_SAFEBAG_pop_free(bags, PKCS12_SAFEBAG_free);
}
using Bags = std::unique_ptr<STACK_OF(PKCS12_SAFEBAG), Freed<freeBags>>;

constexpr int deepestBag = 8;
constexpr qsizetype mostItems = 1000;

const QString endless = u"its passphrase would be stretched without end"_s;

void unload(OSSL_PROVIDER *provider)
{
    OSSL_PROVIDER_unload(provider);
}
using Provider = std::unique_ptr<OSSL_PROVIDER, Freed<unload>>;

/// Keychain Access encrypts certificates with RC2 of 40 bits, which libcrypto has in a provider of its own.
void loadOldCiphers()
{
    static const Provider usual(OSSL_PROVIDER_load(nullptr, "default"));
    static const Provider old(OSSL_PROVIDER_load(nullptr, "legacy"));
    ERR_clear_error();
}

class Reader {
public:
    explicit Reader(QByteArray passphrase)
        : m_passphrase(std::move(passphrase))
    {
    }

    Outcome readContainer(PKCS12 *container)
    {
        const Safes safes(PKCS12_unpack_authsafes(container));
        for (int index = 0; safes && index < sk_PKCS7_num(safes.get()); ++index) {
            const Outcome taken = readSafe(sk_PKCS7_value(safes.get(), index));
            if (!taken)
                return taken;
        }
        return safes ? Outcome::success() : Error{u"the PKCS #12 file is damaged"_s};
    }

    ImportedItems items;

private:
    Outcome readSafe(PKCS7 *safe)
    {
        const bool isEncrypted = PKCS7_type_is_encrypted(safe);
        if (isEncrypted && (!safe->d.encrypted || !isBearable(safe->d.encrypted->enc_data->algorithm)))
            return Error{endless};
        const Bags bags(isEncrypted ? PKCS12_unpack_p7encdata(safe, text(), size())
                                    : PKCS12_unpack_p7data(safe));
        if (!bags)
            return Error{u"a part of the PKCS #12 file cannot be read"_s};
        return readBags(bags.get(), 0);
    }

    Outcome readBags(const STACK_OF(PKCS12_SAFEBAG) * bags, int depth)
    {
        for (int index = 0; bags && index < sk_PKCS12_SAFEBAG_num(bags); ++index) {
            const Outcome taken = readBag(sk_PKCS12_SAFEBAG_value(bags, index), depth);
            if (!taken)
                return taken;
        }
        return Outcome::success();
    }

    Outcome readBag(const PKCS12_SAFEBAG *bag, int depth)
    {
        if (items.keys.size() + items.certificates.size() > mostItems || depth > deepestBag)
            return Error{u"the PKCS #12 file holds too much"_s};
        switch (PKCS12_SAFEBAG_get_nid(bag)) {
        case NID_keyBag:
            return takeKey(PKCS12_SAFEBAG_get0_p8inf(bag));
        case NID_pkcs8ShroudedKeyBag:
            return takeShroudedKey(bag);
        case NID_certBag:
            return takeCertificate(bag);
        case NID_safeContentsBag:
            return readBags(PKCS12_SAFEBAG_get0_safes(bag), depth + 1);
        default:
            return Outcome::success();
        }
    }

    Outcome takeShroudedKey(const PKCS12_SAFEBAG *bag)
    {
        const X509_ALGOR *encryption = nullptr;
        X509_SIG_get0(PKCS12_SAFEBAG_get0_pkcs8(bag), &encryption, nullptr);
        if (!isBearable(encryption))
            return Error{endless};
        const KeyInfo info(PKCS12_decrypt_skey(bag, text(), size()));
        return info ? takeKey(info.get()) : Error{u"a key in the PKCS #12 file cannot be decrypted"_s};
    }

    Outcome takeKey(const PKCS8_PRIV_KEY_INFO *info)
    {
        const Key key(info ? EVP_PKCS82PKEY(info) : nullptr);
        if (!key)
            return Error{u"a key in the PKCS #12 file is damaged or of an unknown kind"_s};
        items.keys.append(derOf(key.get()));
        return Outcome::success();
    }

    Outcome takeCertificate(const PKCS12_SAFEBAG *bag)
    {
        const Certificate certificate(
            PKCS12_SAFEBAG_get_bag_nid(bag) == NID_x509Certificate ? PKCS12_SAFEBAG_get1_cert(bag) : nullptr);
        if (!certificate)
            return Error{u"a certificate in the PKCS #12 file is damaged"_s};
        items.certificates.append(derOf(certificate.get()));
        return Outcome::success();
    }

    [[nodiscard]] const char *text() const
    {
        return m_passphrase.isNull() ? nullptr : m_passphrase.constData();
    }
    [[nodiscard]] int size() const { return static_cast<int>(m_passphrase.size()); }

    QByteArray m_passphrase;
};

bool hasBearableMac(const PKCS12 *container)
{
    const ASN1_INTEGER *iterations = nullptr;
    PKCS12_get0_mac(nullptr, nullptr, nullptr, &iterations, container);
    return !iterations
        || (ASN1_INTEGER_get(iterations) >= 0 && ASN1_INTEGER_get(iterations) <= mostIterations);
}

bool opens(PKCS12 *container, const QByteArray &passphrase)
{
    const bool isRight = PKCS12_mac_present(container) == 0
        || PKCS12_verify_mac(container, passphrase.isNull() ? nullptr : passphrase.constData(),
                             static_cast<int>(passphrase.size()))
            == 1;
    ERR_clear_error();
    return isRight;
}

/// No passphrase and an empty one are two things in this format, and exporters take either for "none".
Result<QByteArray> passphraseThatOpens(PKCS12 *container, const PassphraseSource &source)
{
    for (const QByteArray &none : {QByteArray(), QByteArray("")}) {
        if (PKCS12_mac_present(container) == 1 && opens(container, none))
            return none;
    }
    const auto passphrase = source();
    if (!passphrase)
        return passphrase;
    return opens(container, *passphrase) ? passphrase : Error{u"the passphrase is wrong"_s};
}

} // namespace

Result<ImportedItems> readPkcs12(const QByteArray &bytes, const PassphraseSource &passphrase)
{
    const unsigned char *at = bytesOf(bytes);
    const Container container(d2i_PKCS12(nullptr, &at, static_cast<long>(bytes.size())));
    ERR_clear_error();
    if (!container)
        return Error{u"neither PKCS #12 nor PEM nor DER"_s};
    if (!hasBearableMac(container.get()))
        return Error{endless};
    loadOldCiphers();
    const auto right = passphraseThatOpens(container.get(), passphrase);
    if (!right)
        return right.failure();
    Reader reader(*right);
    const Outcome read = reader.readContainer(container.get());
    ERR_clear_error();
    return read ? Result<ImportedItems>(reader.items) : read.failure();
}

} // namespace toolchain
