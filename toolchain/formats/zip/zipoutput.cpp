#include "formats/zip/zipoutput.h"

#include "formats/crc.h"
#include "formats/failures.h"
#include "formats/zip/zipformat.h"
#include "support/openfile.h"
#include "support/wholefile.h"

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>

namespace toolchain::zip {

namespace {

constexpr qsizetype blockSize = 256 << 10;
constexpr qsizetype dictionarySize = 32 << 10;
constexpr quint64 largeSize = 0xf0000000; ///< leaves room for what packing may add
/// Names are bytes, as Apple's tools have them: some readers compose those that are marked as UTF-8.
constexpr quint16 noFlags = 0;
constexpr quint16 versionNeeded = 20;
constexpr quint16 versionNeededFor64 = 45;

/// Packs a block; the next one may be put right behind it. Empty after a failure, which is one of memory.
QByteArray deflated(const QByteArray &bytes, const QByteArray &before, bool isLast, int level)
{
    z_stream stream = {};
    if (deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return {};
    auto *source =
        reinterpret_cast<Bytef *>(const_cast<char *>(bytes.constData())); // zlib does not write to it
    deflateSetDictionary(&stream, reinterpret_cast<const Bytef *>(before.constData()), uInt(before.size()));
    constexpr uLong flushMark = 16;
    QByteArray target(qsizetype(deflateBound(&stream, uLong(bytes.size())) + flushMark), Qt::Uninitialized);
    stream.next_in = source;
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(target.data());
    stream.avail_out = uInt(target.size());
    deflate(&stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    target.truncate(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return target;
}

/// Date and time as MS-DOS counted them, in this host's zone.
quint32 dosTime(qint64 secondsSince1970)
{
    const auto seconds = std::time_t(secondsSince1970);
    struct tm local = {};
    localtime_r(&seconds, &local);
    constexpr int firstYear = 80;
    constexpr int lastYear = firstYear + 127;
    if (local.tm_year < firstYear || local.tm_year > lastYear)
        return 1 << 21 | 1 << 16;
    const int date = (local.tm_year - firstYear) << 9 | (local.tm_mon + 1) << 5 | local.tm_mday;
    const int time = local.tm_hour << 11 | local.tm_min << 5 | local.tm_sec / 2;
    return quint32(date) << 16 | quint32(time);
}

QByteArray timesOf(const Member &member)
{
    constexpr quint8 hasModification = 1;
    const auto modified = qint32(std::clamp<qint64>(member.modified, std::numeric_limits<qint32>::min(),
                                                    std::numeric_limits<qint32>::max()));
    return LittleEndianBytes().u16(timesField).u16(5).add(hasModification).add(modified).bytes();
}

} // namespace

ZipOutput::ZipOutput(int descriptor, std::filesystem::path path, int level)
    : m_descriptor(descriptor)
    , m_path(std::move(path))
    , m_level(level)
{
}

void ZipOutput::add(const Member &member, const QByteArray &bytes)
{
    if (!m_outcome)
        return;
    begin(member, quint64(bytes.size()));
    for (qsizetype done = 0; done == 0 || done < bytes.size(); done += blockSize) {
        const bool isLast = bytes.size() - done <= blockSize;
        const Place place = done == 0 ? (isLast ? Place::only : Place::first)
            : isLast                  ? Place::last
                                      : Place::middle;
        const qsizetype before = std::min(done, dictionarySize);
        give(place, bytes.mid(done, blockSize), bytes.mid(done - before, before));
    }
}

void ZipOutput::addFile(const Member &member, const std::filesystem::path &path, quint64 size)
{
    const OpenFile file(path);
    if (m_outcome && file.descriptor() < 0)
        m_outcome = systemFailure(path, errno);
    if (m_outcome)
        begin(member, size);
    QByteArray before;
    quint64 left = size;
    do {
        const QByteArray bytes =
            readBlock(file.descriptor(), qsizetype(std::min(left, quint64(blockSize))), path);
        if (!m_outcome)
            return;
        const bool isFirst = left == size;
        left -= quint64(bytes.size());
        give(isFirst         ? (left == 0 ? Place::only : Place::first)
                 : left == 0 ? Place::last
                             : Place::middle,
             bytes, before);
        before = bytes.last(std::min(bytes.size(), dictionarySize));
    } while (left > 0);
}

QByteArray ZipOutput::readBlock(int file, qsizetype size, const std::filesystem::path &path)
{
    QByteArray bytes(m_outcome ? size : 0, Qt::Uninitialized);
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t length = read(file, bytes.data() + done, std::size_t(bytes.size() - done));
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0) {
            m_outcome =
                length < 0 ? systemFailure(path, errno) : failureOf(path, "became shorter while it was read");
            return {};
        }
        done += length;
    }
    return bytes;
}

void ZipOutput::begin(const Member &member, quint64 size)
{
    Entry entry;
    entry.member = member;
    entry.hasLargeSizes = size >= largeSize;
    m_entries.push_back(entry);
}

void ZipOutput::give(Place place, const QByteArray &bytes, const QByteArray &before)
{
    if (m_work.isFull())
        take();
    m_work.give([place, bytes, before, level = m_level] { return pack(place, bytes, before, level); });
}

ZipOutput::Block ZipOutput::pack(Place place, const QByteArray &bytes, const QByteArray &before, int level)
{
    Block block{.place = place,
                .plainSize = quint64(bytes.size()),
                .checksum = crcOf(bytes),
                .isStored = false,
                .bytes = {}};
    block.bytes = deflated(bytes, before, place == Place::only || place == Place::last, level);
    block.isStored = place == Place::only && block.bytes.size() >= bytes.size();
    if (block.isStored)
        block.bytes = bytes;
    return block;
}

void ZipOutput::take()
{
    const Block block = m_work.take();
    if (m_outcome)
        store(block);
}

void ZipOutput::store(const Block &block)
{
    Entry &entry = m_entries[m_stored];
    entry.checksum = joinedCrc(entry.checksum, block.checksum, block.plainSize);
    entry.plainSize += block.plainSize;
    entry.packedSize += quint64(block.bytes.size());
    if (block.place == Place::only || block.place == Place::first) {
        entry.offset = m_length;
        entry.method = block.isStored ? storedMethod : deflateMethod;
        write(localHeader(entry) + block.bytes);
    } else {
        write(block.bytes);
    }
    if (block.place == Place::last)
        patch(entry);
    if (block.place == Place::only || block.place == Place::last)
        ++m_stored;
}

/// Writes the header once more, which now has the sizes.
void ZipOutput::patch(const Entry &entry)
{
    const QByteArray header = localHeader(entry);
    if (m_outcome
        && pwrite(m_descriptor, header.constData(), std::size_t(header.size()), off_t(entry.offset))
            != header.size())
        m_outcome = systemFailure(m_path, errno);
}

void ZipOutput::write(QByteArrayView bytes)
{
    if (!m_outcome)
        return;
    if (!writeFully(m_descriptor, {bytes.data(), std::size_t(bytes.size())}))
        m_outcome = systemFailure(m_path, errno);
    m_length += quint64(bytes.size());
}

QByteArray ZipOutput::localHeader(const Entry &entry)
{
    LittleEndianBytes extra;
    if (entry.hasLargeSizes)
        extra.u16(sizesField).u16(16).u64(entry.plainSize).u64(entry.packedSize);
    extra.raw(timesOf(entry.member));
    LittleEndianBytes header;
    header.u32(localSignature).u16(entry.hasLargeSizes ? versionNeededFor64 : versionNeeded);
    header.u16(noFlags).u16(entry.method).u32(dosTime(entry.member.modified));
    header.u32(entry.checksum).u32(entry.hasLargeSizes ? in64 : quint32(entry.packedSize));
    header.u32(entry.hasLargeSizes ? in64 : quint32(entry.plainSize));
    header.u16(quint16(entry.member.name.size())).u16(quint16(extra.bytes().size()));
    return header.raw(entry.member.name).raw(extra.bytes()).bytes();
}

QByteArray ZipOutput::directoryEntry(const Entry &entry)
{
    constexpr quint32 isDosFolder = 0x10;
    const bool isFar = entry.offset >= in64;
    const bool is64 = isFar || entry.hasLargeSizes;
    LittleEndianBytes large;
    if (entry.hasLargeSizes)
        large.u64(entry.plainSize).u64(entry.packedSize);
    if (isFar)
        large.u64(entry.offset);
    LittleEndianBytes extra;
    if (is64)
        extra.u16(sizesField).u16(quint16(large.bytes().size())).raw(large.bytes());
    extra.raw(timesOf(entry.member));
    LittleEndianBytes bytes;
    bytes.u32(centralSignature).u16(madeOnUnix | (is64 ? versionNeededFor64 : versionNeeded));
    bytes.u16(is64 ? versionNeededFor64 : versionNeeded).u16(noFlags);
    bytes.u16(entry.method).u32(dosTime(entry.member.modified)).u32(entry.checksum);
    bytes.u32(entry.hasLargeSizes ? in64 : quint32(entry.packedSize));
    bytes.u32(entry.hasLargeSizes ? in64 : quint32(entry.plainSize));
    bytes.u16(quint16(entry.member.name.size())).u16(quint16(extra.bytes().size())).u16(0).u16(0).u16(0);
    bytes.u32(quint32(entry.member.mode) << 16 | (S_ISDIR(entry.member.mode) ? isDosFolder : 0));
    bytes.u32(isFar ? in64 : quint32(entry.offset));
    return bytes.raw(entry.member.name).raw(extra.bytes()).bytes();
}

QByteArray ZipOutput::directoryEnd(quint64 offset) const
{
    constexpr quint64 mostEntries = 0xffff;
    const auto count = quint64(m_entries.size());
    const quint64 size = m_length - offset;
    LittleEndianBytes end;
    if (count >= mostEntries || offset >= in64 || size >= in64) {
        end.u32(end64Signature)
            .u64(end64Size - 12)
            .u16(madeOnUnix | versionNeededFor64)
            .u16(versionNeededFor64);
        end.u32(0).u32(0).u64(count).u64(count).u64(size).u64(offset);
        end.u32(locatorSignature).u32(0).u64(m_length).u32(1);
    }
    const auto shortCount = quint16(std::min(count, mostEntries));
    end.u32(endSignature).u16(0).u16(0).u16(shortCount).u16(shortCount);
    return end.u32(quint32(std::min<quint64>(size, in64)))
        .u32(quint32(std::min<quint64>(offset, in64)))
        .u16(0)
        .bytes();
}

void ZipOutput::finish()
{
    while (!m_work.isEmpty())
        take();
    const quint64 offset = m_length;
    for (const Entry &entry : m_entries)
        write(directoryEntry(entry));
    write(directoryEnd(offset));
}

} // namespace toolchain::zip
