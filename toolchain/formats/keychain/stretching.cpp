#include "formats/keychain/stretching.h"

#include <openssl/err.h>
#include <openssl/pkcs12.h>

#include "formats/cryptography.h"
#include "formats/keychain/vaultcipher.h"

namespace toolchain {

namespace {

using FirstForm = std::unique_ptr<PBEPARAM, Freed<PBEPARAM_free>>;
using SecondForm = std::unique_ptr<PBE2PARAM, Freed<PBE2PARAM_free>>;
using Derivation = std::unique_ptr<PBKDF2PARAM, Freed<PBKDF2PARAM_free>>;
using Scrypt = std::unique_ptr<SCRYPT_PARAMS, Freed<SCRYPT_PARAMS_free>>;

template <typename T>
T *parametersOf(const X509_ALGOR *algorithm, const ASN1_ITEM *item)
{
    const ASN1_TYPE *parameter = algorithm ? algorithm->parameter : nullptr;
    return parameter ? static_cast<T *>(ASN1_TYPE_unpack_sequence(item, parameter)) : nullptr;
}

bool isFew(const ASN1_INTEGER *iterations)
{
    const long number = ASN1_INTEGER_get(iterations);
    return number >= 0 && number <= mostIterations;
}

quint64 numberIn(const ASN1_INTEGER *integer)
{
    uint64_t number = 0;
    return ASN1_INTEGER_get_uint64(&number, integer) == 1 ? number : 0;
}

bool isBearableDerivation(const X509_ALGOR *function)
{
    const int kind = function ? OBJ_obj2nid(function->algorithm) : NID_undef;
    if (kind == NID_id_pbkdf2) {
        const Derivation derivation(parametersOf<PBKDF2PARAM>(function, ASN1_ITEM_rptr(PBKDF2PARAM)));
        return !derivation || isFew(derivation->iter);
    }
    const Scrypt scrypt(kind == NID_id_scrypt
                            ? parametersOf<SCRYPT_PARAMS>(function, ASN1_ITEM_rptr(SCRYPT_PARAMS))
                            : nullptr);
    return !scrypt
        || ScryptCost{numberIn(scrypt->costParameter), numberIn(scrypt->blockSize),
                      numberIn(scrypt->parallelizationParameter)}
               .isBearable();
}

bool judged(const X509_ALGOR *encryption)
{
    if (OBJ_obj2nid(encryption->algorithm) == NID_pbes2) {
        const SecondForm form(parametersOf<PBE2PARAM>(encryption, ASN1_ITEM_rptr(PBE2PARAM)));
        return !form || isBearableDerivation(form->keyfunc);
    }
    const FirstForm form(parametersOf<PBEPARAM>(encryption, ASN1_ITEM_rptr(PBEPARAM)));
    return !form || isFew(form->iter);
}

} // namespace

bool isBearable(const X509_ALGOR *encryption)
{
    const bool answer = judged(encryption);
    ERR_clear_error();
    return answer;
}

bool isBearableKey(const QByteArray &der)
{
    const unsigned char *at = bytesOf(der);
    const std::unique_ptr<X509_SIG, Freed<X509_SIG_free>> box(
        d2i_X509_SIG(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    const X509_ALGOR *encryption = nullptr;
    if (box)
        X509_SIG_get0(box.get(), &encryption, nullptr);
    return !encryption || isBearable(encryption);
}

} // namespace toolchain
