#include "formats/notary/piecedigest.h"
#include "formats/notary/upload.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <future>
#include <utility>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::notary {

namespace {

constexpr qint64 largestSingleRequest = 128LL << 20;
constexpr qint64 leastPart = 32LL << 20; // small, since the last one goes over one connection alone
constexpr qint64 mostParts = 9'000; // the storage takes 10,000
constexpr qint64 wholeMebibyte = 1LL << 20;

qint64 partSizeFor(qint64 size)
{
    if (size <= largestSingleRequest)
        return size;
    const qint64 needed = (size + mostParts - 1) / mostParts;
    return std::max(leastPart, (needed + wholeMebibyte - 1) / wholeMebibyte * wholeMebibyte);
}

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
    const Outcome read = file->readWhole();
    if (!read)
        return read.failure();
    return file;
}

/// The submission tells the digest of the whole file, and each request that of its part: with two processors
/// the one costs no time beside the other.
Outcome UploadFile::readWhole()
{
    posix_fadvise(m_descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    const qint64 partSize = partSizeFor(m_size);
    for (qint64 offset = 0; offset < m_size; offset += partSize)
        m_pieces.append(FilePiece{m_descriptor, offset, std::min(partSize, m_size - offset)});
    auto digesting = std::async(std::launch::async, sha256Of, FilePiece{m_descriptor, 0, m_size});
    const Outcome pieces = m_pieces.size() > 1 ? readPieces() : Outcome::success();
    const auto whole = digesting.get();
    if (!whole || !pieces)
        return Error{reason(m_path, whole ? pieces.error() : whole.error())};
    m_sha256 = *whole;
    if (m_pieces.size() == 1)
        m_digests = {m_sha256};
    if (hasChanged())
        return Error{reason(m_path, u"it changed while it was being read"_s)};
    return {};
}

Outcome UploadFile::readPieces()
{
    for (const FilePiece &piece : std::as_const(m_pieces)) {
        const auto digest = sha256Of(piece);
        if (!digest)
            return digest.failure();
        m_digests.append(*digest);
    }
    return {};
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
