#include "formats/notary/upload.h"

#include <QFile>
#include <QFileInfo>

#include <openssl/evp.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::notary {

namespace {

constexpr qint64 largestSingleRequest = 128LL << 20;
constexpr qint64 leastPart = 64LL << 20;
constexpr qint64 mostParts = 9'000; // the storage takes 10,000
constexpr qint64 wholeMebibyte = 1LL << 20;
constexpr size_t blockSize = 1 << 20;

qint64 partSizeFor(qint64 size)
{
    if (size <= largestSingleRequest)
        return size;
    const qint64 needed = (size + mostParts - 1) / mostParts;
    return std::max(leastPart, (needed + wholeMebibyte - 1) / wholeMebibyte * wholeMebibyte);
}

class Sha256 {
public:
    Sha256() { EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr); }
    void add(const char *bytes, size_t length) { EVP_DigestUpdate(m_context.get(), bytes, length); }
    QByteArray hex()
    {
        QByteArray digest(32, '\0');
        EVP_DigestFinal_ex(m_context.get(), reinterpret_cast<unsigned char *>(digest.data()), nullptr);
        EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr);
        return digest.toHex();
    }

private:
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> m_context{EVP_MD_CTX_new(), EVP_MD_CTX_free};
};

qint64 changeTime(const struct stat &facts)
{
    return qint64(facts.st_mtim.tv_sec) * 1'000'000'000 + facts.st_mtim.tv_nsec;
}

QString reason(const QString &path, const QString &why)
{
    return u"Unable to read the file '%1': %2"_s.arg(path, why);
}

} // namespace

UploadFile::UploadFile(QString path, int descriptor)
    : m_path(std::move(path))
    , m_descriptor(descriptor)
{
}

UploadFile::~UploadFile()
{
    close(m_descriptor);
}

Result<std::shared_ptr<UploadFile>> UploadFile::open(const QString &path)
{
    // A pipe would block the opening for ever.
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return Error{reason(path, QString::fromLocal8Bit(std::strerror(errno)))};
    const std::shared_ptr<UploadFile> file(new UploadFile(path, descriptor));
    struct stat facts = {};
    if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode))
        return Error{reason(path, u"it is no regular file"_s)};
    if (facts.st_size == 0)
        return Error{reason(path, u"it is empty"_s)};
    file->m_size = facts.st_size;
    file->m_changed = changeTime(facts);
    const QString problem = file->readWhole();
    if (!problem.isEmpty())
        return Error{problem};
    return file;
}

QString UploadFile::readWhole()
{
    posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    const qint64 partSize = partSizeFor(m_size);
    Sha256 whole;
    Sha256 part;
    QByteArray block(qsizetype(blockSize), Qt::Uninitialized);
    for (qint64 offset = 0; offset < m_size;) {
        const FilePiece piece{m_descriptor, offset, std::min(partSize, m_size - offset)};
        for (qint64 done = 0; done < piece.length;) {
            const auto wanted = std::min<size_t>(blockSize, size_t(piece.length - done));
            const ssize_t length = pread(m_descriptor, block.data(), wanted, off_t(offset + done));
            if (length <= 0)
                return reason(m_path,
                              length == 0 ? u"it became shorter while it was being read"_s
                                          : QString::fromLocal8Bit(std::strerror(errno)));
            whole.add(block.constData(), size_t(length));
            if (partSize < m_size)
                part.add(block.constData(), size_t(length));
            done += length;
        }
        m_pieces.append(piece);
        m_digests.append(partSize < m_size ? part.hex() : QByteArray());
        offset += piece.length;
    }
    m_sha256 = whole.hex();
    if (m_pieces.size() == 1)
        m_digests.first() = m_sha256;
    return hasChanged() ? reason(m_path, u"it changed while it was being read"_s) : QString();
}

QString UploadFile::name() const
{
    return QFileInfo(m_path).fileName();
}

bool UploadFile::hasChanged() const
{
    struct stat facts = {};
    return fstat(m_descriptor, &facts) != 0 || facts.st_size != m_size || changeTime(facts) != m_changed;
}

} // namespace toolchain::notary
