#include "formats/keychain/vaultcipher.h"

#include "formats/cryptography.h"

#include <openssl/err.h>

namespace toolchain {

namespace {

using Cipher = std::unique_ptr<EVP_CIPHER_CTX, Freed<EVP_CIPHER_CTX_free>>;

constexpr int nonceSize = 12;
constexpr int tagSize = 16;

unsigned char *writable(QByteArray &bytes)
{
    return reinterpret_cast<unsigned char *>(bytes.data());
}

int sizeOf(const QByteArray &bytes)
{
    return static_cast<int>(bytes.size());
}

bool begin(EVP_CIPHER_CTX *cipher, const QByteArray &key, const QByteArray &nonce, const QByteArray &context,
           int isSealing)
{
    int length = 0;
    return EVP_CipherInit_ex(cipher, EVP_aes_256_gcm(), nullptr, bytesOf(key), bytesOf(nonce), isSealing) == 1
        && EVP_CipherUpdate(cipher, nullptr, &length, bytesOf(context), sizeOf(context)) == 1;
}

} // namespace

QByteArray sealBytes(const QByteArray &key, const QByteArray &bytes, const QByteArray &context)
{
    const Cipher cipher(EVP_CIPHER_CTX_new());
    const QByteArray nonce = randomBytes(nonceSize);
    QByteArray hidden(bytes.size(), '\0');
    QByteArray tag(tagSize, '\0');
    int length = 0;
    const bool isSealed = key.size() == sealingKeySize && begin(cipher.get(), key, nonce, context, 1)
        && EVP_CipherUpdate(cipher.get(), writable(hidden), &length, bytesOf(bytes), sizeOf(bytes)) == 1
        && EVP_CipherFinal_ex(cipher.get(), writable(hidden) + length, &length) == 1
        && EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_GET_TAG, tagSize, tag.data()) == 1;
    return isSealed ? nonce + hidden + tag : QByteArray();
}

std::optional<QByteArray> unsealBytes(const QByteArray &key, const QByteArray &sealed,
                                      const QByteArray &context)
{
    if (key.size() != sealingKeySize || sealed.size() < nonceSize + tagSize)
        return std::nullopt;
    const Cipher cipher(EVP_CIPHER_CTX_new());
    const QByteArray hidden = sealed.mid(nonceSize, sealed.size() - nonceSize - tagSize);
    QByteArray tag = sealed.right(tagSize);
    QByteArray bytes(hidden.size(), '\0');
    int length = 0;
    const bool isWhole = begin(cipher.get(), key, sealed.left(nonceSize), context, 0)
        && EVP_CipherUpdate(cipher.get(), writable(bytes), &length, bytesOf(hidden), sizeOf(hidden)) == 1
        && EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_SET_TAG, tagSize, tag.data()) == 1
        && EVP_CipherFinal_ex(cipher.get(), writable(bytes) + length, &length) == 1;
    ERR_clear_error();
    return isWhole ? std::optional(bytes) : std::nullopt;
}

bool ScryptCost::isBearable() const
{
    constexpr quint64 mostBytes = 512ULL << 20;
    constexpr quint64 mostPasses = 16;
    const bool isPowerOfTwo = n > 1 && (n & (n - 1)) == 0;
    return isPowerOfTwo && r > 0 && p > 0 && p <= mostPasses && r <= mostBytes / 128 / n;
}

QByteArray keyFromPassphrase(const QByteArray &passphrase, const QByteArray &salt, const ScryptCost &cost)
{
    if (!cost.isBearable())
        return {};
    constexpr quint64 mostMemory = 1ULL << 30;
    QByteArray key(sealingKeySize, '\0');
    const bool isDone = EVP_PBE_scrypt(passphrase.constData(), static_cast<size_t>(passphrase.size()),
                                       bytesOf(salt), static_cast<size_t>(salt.size()), cost.n, cost.r,
                                       cost.p, mostMemory, writable(key), static_cast<size_t>(key.size()))
        == 1;
    ERR_clear_error();
    return isDone ? key : QByteArray();
}

} // namespace toolchain
