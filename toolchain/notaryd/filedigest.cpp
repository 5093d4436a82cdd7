#include "notaryd/filedigest.h"

#include <QFile>

#include <openssl/evp.h>

namespace notaryd {

namespace {

constexpr qint64 blockSize = 1 << 20;

} // namespace

Digest::Digest(Kind kind)
    : m_context(EVP_MD_CTX_new(), EVP_MD_CTX_free)
{
    EVP_DigestInit_ex(m_context.get(), kind == Kind::md5 ? EVP_md5() : EVP_sha256(), nullptr);
}

void Digest::add(const char *bytes, qint64 length)
{
    EVP_DigestUpdate(m_context.get(), bytes, size_t(length));
}

QByteArray Digest::result()
{
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    unsigned int length = 0;
    EVP_DigestFinal_ex(m_context.get(), reinterpret_cast<unsigned char *>(digest.data()), &length);
    digest.truncate(qsizetype(length));
    return digest;
}

QByteArray digestOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    Digest digest;
    QByteArray block(blockSize, Qt::Uninitialized);
    qint64 length = 0;
    while ((length = file.read(block.data(), blockSize)) > 0)
        digest.add(block.constData(), length);
    return length < 0 ? QByteArray() : digest.result().toHex();
}

} // namespace notaryd
