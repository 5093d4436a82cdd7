#include "formats/codesignature/digest.h"

#include <openssl/evp.h>

#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

struct Kind {
    HashType type;
    qsizetype size;
    int rank;
    const char *name;
    const EVP_MD *(*algorithm)();
};

constexpr std::array kinds{
    Kind{HashType::sha1, 20, 1, "sha1", EVP_sha1}, Kind{HashType::sha256, 32, 3, "sha256", EVP_sha256},
    Kind{HashType::sha256Truncated, 20, 2, "sha256t", EVP_sha256},
    Kind{HashType::sha384, 48, 4, "sha384", EVP_sha384}, Kind{HashType::sha512, 64, 5, "sha512", EVP_sha512}};

const Kind *kindOf(HashType type)
{
    for (const Kind &kind : kinds) {
        if (kind.type == type)
            return &kind;
    }
    return nullptr;
}

} // namespace

qsizetype hashSize(HashType type)
{
    const Kind *kind = kindOf(type);
    return kind ? kind->size : 0;
}

QString hashName(HashType type)
{
    const Kind *kind = kindOf(type);
    return kind ? QString::fromLatin1(kind->name) : u"unknown(%1)"_s.arg(int(type));
}

HashType hashTypeNamed(QStringView name)
{
    for (const Kind &kind : kinds) {
        if (name == QLatin1StringView(kind.name))
            return kind.type;
    }
    return HashType::none;
}

int hashRank(HashType type)
{
    const Kind *kind = kindOf(type);
    return kind ? kind->rank : 0;
}

struct Digest::Context {
    qsizetype size;
    EVP_MD_CTX *context;
};

Digest::Digest(HashType type)
{
    const Kind *kind = kindOf(type);
    m_context = std::make_unique<Context>(Context{hashSize(type), EVP_MD_CTX_new()});
    EVP_DigestInit_ex(m_context->context, kind ? kind->algorithm() : EVP_sha256(), nullptr);
}

Digest::~Digest()
{
    if (m_context)
        EVP_MD_CTX_free(m_context->context);
}

Digest::Digest(Digest &&) noexcept = default;

void Digest::restart()
{
    // Without an algorithm the one of before is used, and not looked up again for every page.
    EVP_DigestInit_ex(m_context->context, nullptr, nullptr);
}

void Digest::add(QByteArrayView bytes)
{
    EVP_DigestUpdate(m_context->context, bytes.data(), std::size_t(bytes.size()));
}

void Digest::resultInto(char *place)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> whole = {};
    EVP_DigestFinal_ex(m_context->context, whole.data(), nullptr);
    std::memcpy(place, whole.data(), std::size_t(m_context->size));
    restart();
}

QByteArray Digest::result()
{
    QByteArray bytes(m_context->size, '\0');
    resultInto(bytes.data());
    return bytes;
}

QByteArray digestOf(QByteArrayView bytes, HashType type)
{
    Digest digest(type);
    digest.add(bytes);
    return digest.result();
}

} // namespace toolchain::codesignature
