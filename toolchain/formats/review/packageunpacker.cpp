#include "formats/review/packageunpacker.h"

#include "formats/bigendian.h"
#include "formats/package/expansion.h"
#include "formats/review/streamunpacker.h"
#include "formats/xar/xartable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <zlib.h>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::review {

namespace {

constexpr quint64 longestTable = 64 << 20;

Error notAPackage()
{
    return {u"not a package, or a damaged one"_s};
}

QByteArray inflated(const QByteArray &bytes, quint64 size)
{
    QByteArray result(qsizetype(size), Qt::Uninitialized);
    auto length = uLongf(result.size());
    const int outcome = uncompress(reinterpret_cast<Bytef *>(result.data()), &length,
                                   reinterpret_cast<const Bytef *>(bytes.constData()), uLong(bytes.size()));
    return outcome == Z_OK && length == size ? result : QByteArray();
}

bool isArchiveOfFiles(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return name == "Payload"_L1 || name == "Scripts"_L1;
}

class PackageUnpacker {
public:
    PackageUnpacker(const QString &package, QString folder, UnpackBudget &budget)
        : m_file(package)
        , m_folder(std::move(folder))
        , m_budget(budget)
    {
    }

    Result<void> run()
    {
        if (!m_file.open(QIODevice::ReadOnly))
            return Error{m_file.errorString()};
        const auto table = readTable();
        if (!table)
            return notAPackage();
        for (const xar::Piece &piece : table->pieces) {
            if (auto laid = lay(piece); !laid)
                return laid;
        }
        return {};
    }

private:
    std::optional<xar::Table> readTable()
    {
        constexpr qint64 shortestHeader = 28;
        const QByteArray header = m_file.read(shortestHeader);
        if (header.size() < shortestHeader || !header.startsWith("xar!"))
            return {};
        const auto headerSize = bigEndianAt<quint16>(header, 4);
        const auto packedSize = bigEndianAt<quint64>(header, 8);
        const auto size = bigEndianAt<quint64>(header, 16);
        if (packedSize > longestTable || size > longestTable || !m_file.seek(headerSize))
            return {};
        m_heap = headerSize + qint64(packedSize);
        return xar::readTable(inflated(m_file.read(qint64(packedSize)), size));
    }

    Result<void> lay(const xar::Piece &piece)
    {
        m_budget.bytes -= qint64(piece.place.size);
        if (--m_budget.entries < 0 || m_budget.bytes < 0)
            return Error{u"unpacks to more than can be looked at"_s};
        const QString place = QDir::cleanPath(m_folder + u'/' + piece.path);
        if (!place.startsWith(m_folder + u'/'))
            return Error{u"\"%1\" leads out of the package"_s.arg(piece.path)};
        QDir().mkpath(QFileInfo(place).path());
        if (!isArchiveOfFiles(place))
            return copy(piece, place);
        const QString packed = place + u".packed"_s;
        auto copied = copy(piece, packed);
        if (!copied)
            return copied;
        QDir().mkpath(place);
        auto unpacked = unpackStream(packed, ArchiveKind::Compressed, place, m_budget);
        QFile::remove(packed);
        return unpacked;
    }

    Result<void> copy(const xar::Piece &piece, const QString &place)
    {
        QFile out(place);
        if (!out.open(QIODevice::WriteOnly) || !m_file.seek(m_heap + qint64(piece.place.offset)))
            return Error{u"\"%1\" cannot be unpacked"_s.arg(piece.path)};
        qint64 left = qint64(piece.place.size);
        constexpr qint64 blockSize = 1 << 18;
        while (left > 0) {
            const QByteArray block = m_file.read(qMin(left, blockSize));
            if (block.isEmpty() || out.write(block) != block.size())
                return Error{u"\"%1\" is cut short"_s.arg(piece.path)};
            left -= block.size();
        }
        return {};
    }

    QFile m_file;
    const QString m_folder;
    UnpackBudget &m_budget;
    qint64 m_heap = 0; ///< where the files' bytes begin
};

} // namespace

Result<void> unpackPackage(const QString &package, const QString &folder, UnpackBudget &budget)
{
    const auto archive = xar::Archive::open(package);
    if (!archive)
        return archive.failure();
    QDir().rmdir(folder); // it is to be a new one
    if (package::expandPackage(*archive, folder, package::Depth::Payloads))
        return {};
    // Payloads may hold links to places on the disk they are installed to, which nobody follows here.
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    return PackageUnpacker(package, folder, budget).run();
}

} // namespace toolchain::review
