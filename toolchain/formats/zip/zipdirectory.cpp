#include "formats/zip/zipdirectory.h"

#include "formats/crc.h"
#include "formats/zip/zipformat.h"

#include <sys/stat.h>
#include <zlib.h>

#include <algorithm>
#include <ctime>
#include <memory>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;

namespace toolchain::zip {

namespace {

constexpr qsizetype pieceSize = 256 << 10;
constexpr quint64 longestDirectory = 512 << 20; ///< bytes; more than a million long names

const QString notAnArchive = u"is no zip archive, or is damaged"_s;

qint64 fromDosTime(quint32 dos)
{
    struct tm time = {};
    time.tm_year = int(dos >> 25) + 80;
    time.tm_mon = int(dos >> 21 & 15) - 1;
    time.tm_mday = int(dos >> 16 & 31);
    time.tm_hour = int(dos >> 11 & 31);
    time.tm_min = int(dos >> 5 & 63);
    time.tm_sec = int(dos & 31) * 2;
    time.tm_isdst = -1;
    return mktime(&time);
}

/// The mode, with a kind of file; archives that were not made on Unix tell of folders by their names.
quint16 modeFrom(quint16 madeBy, quint32 attributes, const QByteArray &name)
{
    const auto mode = quint16((madeBy & 0xff00) == madeOnUnix ? attributes >> 16 : 0);
    if (name.endsWith('/'))
        return quint16(S_IFDIR | (S_ISDIR(mode) ? mode & 07777 : 0755));
    return (mode & S_IFMT) != 0 ? mode : quint16(S_IFREG | ((mode & 07777) != 0 ? mode & 07777 : 0644));
}

/// Takes from the extra fields what stands there: sizes and places of 64 bits, and the time.
void readExtra(QByteArrayView extra, PackedEntry &entry)
{
    for (qsizetype at = 0; at + 4 <= extra.size();) {
        const auto kind = littleEndianAt<quint16>(extra, at);
        const qsizetype size =
            std::min<qsizetype>(littleEndianAt<quint16>(extra, at + 2), extra.size() - at - 4);
        const QByteArrayView field = extra.sliced(at + 4, size);
        if (kind == timesField && size >= 5 && (field[0] & 1) != 0)
            entry.modified = littleEndianAt<qint32>(field, 1);
        qsizetype place = 0;
        for (quint64 *number : {&entry.plainSize, &entry.packedSize, &entry.offset}) {
            if (kind != sizesField || *number != in64)
                continue;
            *number = littleEndianAt<quint64>(field, place);
            place += 8;
        }
        at += 4 + size;
    }
}

/// No stream of RFC 1951 grows by more.
bool isPossible(const PackedEntry &entry)
{
    constexpr quint64 mostGrowth = 1040;
    constexpr quint64 margin = 1024;
    return entry.method == storedMethod ? entry.plainSize == entry.packedSize
                                        : entry.plainSize <= entry.packedSize * mostGrowth + margin;
}

} // namespace

bool PackedEntry::isFolder() const
{
    return S_ISDIR(mode);
}

bool PackedEntry::isLink() const
{
    return S_ISLNK(mode);
}

bool PackedEntry::isFile() const
{
    return S_ISREG(mode);
}

ZipDirectory::ZipDirectory(const QString &path)
    : m_file(path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) == 0 && !S_ISREG(status.st_mode)) {
        m_outcome = Error{u"is no file"_s};
        return;
    }
    if (!m_file.open(QIODevice::ReadOnly)) {
        m_outcome = Error{m_file.errorString()};
        return;
    }
    Ending ending;
    if (!readEnding(ending)) {
        m_outcome = Error{notAnArchive};
        return;
    }
    readEntries(ending);
    for (PackedEntry &entry : m_entries) {
        if (m_outcome)
            locate(entry, ending.offset);
    }
    if (m_outcome)
        refuseSharedBytes();
}

quint64 ZipDirectory::plainSize() const
{
    quint64 size = 0;
    for (const PackedEntry &entry : m_entries)
        size += entry.plainSize;
    return size;
}

const PackedEntry *ZipDirectory::find(const QByteArray &name) const
{
    const auto place = m_places.find(name);
    return place == m_places.end() ? nullptr : &m_entries[*place];
}

QByteArray ZipDirectory::bytesAt(quint64 offset, qsizetype size)
{
    if (offset > quint64(m_file.size()) || !m_file.seek(qint64(offset)))
        return {};
    return m_file.read(size);
}

/// The ending stands behind everything, before a comment of any length up to 64 KiB.
bool ZipDirectory::readEnding(Ending &ending)
{
    constexpr qint64 longestComment = 0xffff;
    const qint64 start = std::max<qint64>(0, m_file.size() - endSize - longestComment);
    const QByteArray tail = bytesAt(quint64(start), qsizetype(m_file.size() - start));
    const QByteArray mark = LittleEndianBytes().u32(endSignature).bytes();
    const qsizetype at = tail.size() < endSize ? -1 : tail.lastIndexOf(mark, tail.size() - endSize);
    if (at < 0)
        return false;
    const QByteArrayView end = QByteArrayView(tail).sliced(at);
    ending.count = littleEndianAt<quint16>(end, 10);
    ending.size = littleEndianAt<quint32>(end, 12);
    ending.offset = littleEndianAt<quint32>(end, 16);
    const bool isLarge = ending.count == 0xffff || ending.size == in64 || ending.offset == in64;
    const auto fileSize = quint64(m_file.size());
    return (!isLarge || readLargeEnding(start + at, ending)) && ending.size <= longestDirectory
        && ending.offset <= fileSize && ending.size <= fileSize - ending.offset;
}

bool ZipDirectory::readLargeEnding(qint64 endOffset, Ending &ending)
{
    if (endOffset < locatorSize)
        return false;
    const QByteArray locator = bytesAt(quint64(endOffset - locatorSize), locatorSize);
    if (littleEndianAt<quint32>(locator, 0) != locatorSignature)
        return true; // the short numbers may be meant as they are
    const QByteArray end = bytesAt(littleEndianAt<quint64>(locator, 8), end64Size);
    if (littleEndianAt<quint32>(end, 0) != end64Signature)
        return false;
    ending.count = littleEndianAt<quint64>(end, 32);
    ending.size = littleEndianAt<quint64>(end, 40);
    ending.offset = littleEndianAt<quint64>(end, 48);
    return true;
}

void ZipDirectory::readEntries(const Ending &ending)
{
    const QByteArray directory = bytesAt(ending.offset, qsizetype(ending.size));
    qsizetype at = 0;
    for (quint64 number = 0; number < ending.count && m_outcome; ++number) {
        at = readEntry(directory, at);
        if (at < 0)
            m_outcome = Error{notAnArchive};
    }
}

/// Answers where the next entry begins; below 0 if there is none where one should be.
qsizetype ZipDirectory::readEntry(QByteArrayView directory, qsizetype at)
{
    const qsizetype nameSize = littleEndianAt<quint16>(directory, at + 28);
    const qsizetype extraSize = littleEndianAt<quint16>(directory, at + 30);
    const qsizetype next =
        at + centralSize + nameSize + extraSize + littleEndianAt<quint16>(directory, at + 32);
    if (littleEndianAt<quint32>(directory, at) != centralSignature || next > directory.size())
        return -1;
    PackedEntry entry;
    entry.name = directory.sliced(at + centralSize, nameSize).toByteArray();
    entry.flags = littleEndianAt<quint16>(directory, at + 8);
    entry.method = littleEndianAt<quint16>(directory, at + 10);
    entry.modified = fromDosTime(littleEndianAt<quint32>(directory, at + 12));
    entry.checksum = littleEndianAt<quint32>(directory, at + 16);
    entry.packedSize = littleEndianAt<quint32>(directory, at + 20);
    entry.plainSize = littleEndianAt<quint32>(directory, at + 24);
    entry.mode = modeFrom(littleEndianAt<quint16>(directory, at + 4),
                          littleEndianAt<quint32>(directory, at + 38), entry.name);
    entry.offset = littleEndianAt<quint32>(directory, at + 42);
    readExtra(directory.sliced(at + centralSize + nameSize, extraSize), entry);
    if (entry.name.isEmpty() || entry.name.contains('\0') || m_places.contains(entry.name))
        fail(entry.name,
             entry.name.isEmpty() ? u"has no name"_s : u"is there twice, or has no possible name"_s);
    m_places.insert(entry.name, m_entries.size());
    m_entries.push_back(std::move(entry));
    return next;
}

void ZipDirectory::locate(PackedEntry &entry, quint64 directoryOffset)
{
    const QByteArray header = bytesAt(entry.offset, localSize);
    if (littleEndianAt<quint32>(header, 0) != localSignature)
        return fail(entry.name, u"is not where the directory says"_s);
    entry.bytesOffset = entry.offset + quint64(localSize) + littleEndianAt<quint16>(header, 26)
        + littleEndianAt<quint16>(header, 28);
    if (entry.bytesOffset > directoryOffset || entry.packedSize > directoryOffset - entry.bytesOffset)
        return fail(entry.name, u"is not where the directory says"_s);
    if ((entry.flags & isEncrypted) != 0)
        return fail(entry.name, u"is encrypted, which cannot be read here"_s);
    if (entry.method != storedMethod && entry.method != deflateMethod)
        return fail(entry.name, u"is packed by method %1, which cannot be read here"_s.arg(entry.method));
    if (!isPossible(entry))
        fail(entry.name, u"claims to hold more than it can"_s);
}

/// Archives that unpack to thousands of times their size have many entries share one stream.
void ZipDirectory::refuseSharedBytes()
{
    std::vector<const PackedEntry *> ordered;
    ordered.reserve(m_entries.size());
    for (const PackedEntry &entry : m_entries)
        ordered.push_back(&entry);
    std::sort(ordered.begin(), ordered.end(),
              [](const PackedEntry *a, const PackedEntry *b) { return a->offset < b->offset; });
    for (std::size_t place = 1; place < ordered.size(); ++place) {
        const PackedEntry &before = *ordered[place - 1];
        if (ordered[place]->offset < before.bytesOffset + before.packedSize)
            return fail(ordered[place]->name, u"shares its bytes with another entry"_s);
    }
}

Outcome ZipDirectory::read(const PackedEntry &entry, const ByteSink &sink)
{
    quint64 size = 0;
    quint32 checksum = 0;
    const auto checked = [&](QByteArrayView bytes) {
        size += quint64(bytes.size());
        checksum = crcOf(bytes, checksum);
        return size <= entry.plainSize && sink(bytes);
    };
    const Given given = entry.method == deflateMethod ? inflate(entry, checked) : copyStored(entry, checked);
    if (!given)
        return given.failure();
    if (*given == Giving::isDone && (size != entry.plainSize || checksum != entry.checksum))
        return Error{u"\"%1\" is damaged"_s.arg(QString::fromUtf8(entry.name))};
    return {};
}

ZipDirectory::Given ZipDirectory::copyStored(const PackedEntry &entry, const ByteSink &sink)
{
    for (quint64 done = 0; done < entry.packedSize;) {
        const QByteArray piece = bytesAt(entry.bytesOffset + done,
                                         qsizetype(std::min(entry.packedSize - done, quint64(pieceSize))));
        if (piece.isEmpty())
            return Error{u"\"%1\" cannot be read"_s.arg(QString::fromUtf8(entry.name))};
        if (!sink(piece))
            return Giving::isStopped;
        done += quint64(piece.size());
    }
    return Giving::isDone;
}

ZipDirectory::Given ZipDirectory::inflate(const PackedEntry &entry, const ByteSink &sink)
{
    const Error damaged{u"\"%1\" is damaged"_s.arg(QString::fromUtf8(entry.name))};
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return Error{u"there is not enough memory"_s};
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> ended(&stream, inflateEnd);
    QByteArray plain(pieceSize, Qt::Uninitialized);
    QByteArray packed;
    quint64 taken = 0;
    for (int result = Z_OK; result != Z_STREAM_END;) {
        if (stream.avail_in == 0 && taken < entry.packedSize) {
            packed = bytesAt(entry.bytesOffset + taken,
                             qsizetype(std::min(entry.packedSize - taken, quint64(pieceSize))));
            taken += quint64(packed.size());
            stream.next_in = reinterpret_cast<Bytef *>(packed.data());
            stream.avail_in = uInt(packed.size());
        }
        stream.next_out = reinterpret_cast<Bytef *>(plain.data());
        stream.avail_out = uInt(plain.size());
        result = ::inflate(&stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END)
            return damaged;
        if (!sink(QByteArrayView(plain).first(plain.size() - qsizetype(stream.avail_out))))
            return stream.total_out > entry.plainSize ? damaged : Given(Giving::isStopped);
    }
    return Giving::isDone;
}

platform::Result<QByteArray> ZipDirectory::bytesOf(const PackedEntry &entry, quint64 most)
{
    if (entry.plainSize > most)
        return platform::Error{u"\"%1\" is too large"_s.arg(QString::fromUtf8(entry.name))};
    QByteArray bytes;
    const Outcome given = read(entry, [&bytes](QByteArrayView piece) {
        bytes.append(piece);
        return true;
    });
    if (!given)
        return given.failure();
    return bytes;
}

void ZipDirectory::fail(const QByteArray &name, const QString &reason)
{
    if (m_outcome)
        m_outcome = Error{u"the entry \"%1\" %2"_s.arg(QString::fromUtf8(name), reason)};
}

} // namespace toolchain::zip
