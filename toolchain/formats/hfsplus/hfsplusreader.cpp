#include "formats/hfsplus/hfsplusreader.h"

#include "formats/bigendian.h"
#include "formats/hfsplus/hfsplusformat.h"

#include <sys/stat.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace hfsplus;

namespace {

constexpr const char *damaged = "the volume is damaged";
constexpr qsizetype pieceSize = 256 << 10;
constexpr quint8 compressedFlag = 0x20;

QString nameAt(QByteArrayView bytes, qsizetype offset)
{
    const qsizetype length = bigEndianAt<quint16>(bytes, offset);
    QString name;
    for (qsizetype unit = 0; unit < length && offset + 2 + 2 * unit < bytes.size(); ++unit)
        name.append(QChar(bigEndianAt<quint16>(bytes, offset + 2 + 2 * unit)));
    return name;
}

qint64 dateAt(QByteArrayView bytes, qsizetype offset)
{
    return qint64(bigEndianAt<quint32>(bytes, offset)) - secondsBefore1970;
}

/// The mode, with the kind of file, which volumes from before Mac OS X leave out.
quint16 modeAt(QByteArrayView record, bool isFolder)
{
    constexpr qsizetype modeOffset = 42;
    const quint16 mode = bigEndianAt<quint16>(record, modeOffset);
    if (isFolder)
        return (mode & S_IFMT) == S_IFDIR ? mode : quint16(S_IFDIR | 0755);
    return (mode & S_IFMT) != 0 && (mode & S_IFMT) != S_IFDIR ? mode : quint16(S_IFREG | 0644);
}

VolumeEntry entryFrom(const QString &name, QByteArrayView record, bool isFolder)
{
    constexpr qsizetype numberOffset = 8;
    constexpr qsizetype modifiedOffset = 16;
    constexpr qsizetype accessedOffset = 24;
    constexpr qsizetype ownerFlagsOffset = 41;
    constexpr qsizetype finderTypeOffset = 48;
    VolumeEntry entry;
    entry.number = bigEndianAt<quint32>(record, numberOffset);
    entry.storedName = name;
    entry.mode = modeAt(record, isFolder);
    entry.modified = dateAt(record, modifiedOffset);
    entry.accessed = dateAt(record, accessedOffset);
    entry.isHardLink = !isFolder && record.sliced(finderTypeOffset).startsWith("hlnkhfs+");
    entry.isCompressed = (bigEndianAt<quint8>(record, ownerFlagsOffset) & compressedFlag) != 0;
    return entry;
}

/// Files that a volume keeps for itself; programs on macOS do not see them either.
bool belongsToVolume(quint32 folder, const QString &name)
{
    return folder == rootFolder
        && (name.startsWith(QChar(u'\0')) || name == u".HFS+ Private Directory Data\r"_s
            || name == u".journal"_s || name == u".journal_info_block"_s);
}

} // namespace

bool HfsPlusReader::isVolume(const ByteSource &source)
{
    QByteArray bytes(4, '\0');
    if (!source(volumeHeaderOffset, bytes.data(), bytes.size()))
        return false;
    const auto kind = bigEndianAt<quint16>(bytes, 0);
    return kind == signature || kind == caseSensitiveSignature;
}

HfsPlusReader::HfsPlusReader(ByteSource source)
    : m_source(std::move(source))
{
    constexpr qsizetype blockSizeOffset = 40;
    constexpr quint32 largestBlock = 1 << 30;
    QByteArray header(volumeHeaderSize, '\0');
    const bool hasHeader = m_source(volumeHeaderOffset, header.data(), header.size());
    m_blockSize = bigEndianAt<quint32>(header, blockSizeOffset);
    if (!hasHeader || m_blockSize < 512 || m_blockSize > largestBlock
        || !readTree(forkAt(header, hfsplus::extentsFork, extentsFile), &HfsPlusReader::takeExtents)
        || !readTree(forkAt(header, hfsplus::catalogFork, catalogFile), &HfsPlusReader::takeCatalogRecord)
        || m_root.number != hfsplus::rootFolder)
        m_error = damaged;
}

const std::vector<VolumeEntry> &HfsPlusReader::entriesOf(quint32 folder) const
{
    static const std::vector<VolumeEntry> none;
    const auto found = m_folders.find(folder);
    return found == m_folders.end() ? none : found->second;
}

StoredFork HfsPlusReader::forkAt(QByteArrayView bytes, qsizetype offset, quint32 number) const
{
    constexpr qsizetype runsOffset = 16;
    StoredFork fork;
    fork.size = bigEndianAt<quint64>(bytes, offset);
    for (int place = 0; place < extentsInFork; ++place) {
        const qsizetype run = offset + runsOffset + 8 * place;
        fork.runs.push_back({bigEndianAt<quint32>(bytes, run), bigEndianAt<quint32>(bytes, run + 4)});
    }
    if (const auto more = m_moreRuns.find(number); more != m_moreRuns.end())
        fork.runs.insert(fork.runs.end(), more->second.begin(), more->second.end());
    return fork;
}

bool HfsPlusReader::readFork(const StoredFork &fork, quint64 offset, char *target, qsizetype size) const
{
    for (const auto &run : fork.runs) {
        const quint64 runSize = quint64(run.blockCount) * m_blockSize;
        if (size > 0 && offset < runSize) {
            const auto length = qsizetype(std::min(quint64(size), runSize - offset));
            if (!m_source(quint64(run.firstBlock) * m_blockSize + offset, target, length))
                return false;
            target += length;
            size -= length;
            offset += quint64(length);
        }
        offset -= std::min(offset, runSize);
    }
    return size == 0;
}

bool HfsPlusReader::read(const StoredFork &fork, const ByteSink &sink) const
{
    QByteArray piece(pieceSize, Qt::Uninitialized);
    for (quint64 done = 0; done < fork.size;) {
        const auto length = qsizetype(std::min(fork.size - done, quint64(pieceSize)));
        if (!readFork(fork, done, piece.data(), length) || !sink({piece.constData(), length}))
            return false;
        done += quint64(length);
    }
    return true;
}

/// Goes along the leaves, which are chained. No volume gets more out of this than its tree has nodes.
bool HfsPlusReader::readTree(const StoredFork &tree, RecordHandler handler)
{
    constexpr qsizetype smallestNode = 512;
    constexpr qsizetype firstLeafOffset = nodeDescriptorSize + 10;
    constexpr qsizetype nodeSizeOffset = nodeDescriptorSize + 18;
    QByteArray node(smallestNode, '\0');
    if (!readFork(tree, 0, node.data(), node.size()))
        return false;
    const qsizetype nodeSize = bigEndianAt<quint16>(node, nodeSizeOffset);
    quint32 number = bigEndianAt<quint32>(node, firstLeafOffset);
    if (nodeSize < smallestNode)
        return false;
    node.resize(nodeSize);
    const quint64 nodeCount = tree.size / quint64(nodeSize);
    for (quint64 seen = 0; number != 0; ++seen) {
        if (seen >= nodeCount || !readFork(tree, quint64(number) * quint64(nodeSize), node.data(), nodeSize)
            || !readNode(node, handler))
            return false;
        number = bigEndianAt<quint32>(node, 0);
    }
    return true;
}

bool HfsPlusReader::readNode(QByteArrayView node, RecordHandler handler)
{
    constexpr qsizetype kindOffset = 8;
    constexpr qsizetype countOffset = 10;
    const qsizetype count = bigEndianAt<quint16>(node, countOffset);
    if (bigEndianAt<qint8>(node, kindOffset) != leafNode
        || (count + 1) * 2 > node.size() - nodeDescriptorSize)
        return false;
    for (qsizetype place = 0; place < count; ++place) {
        const qsizetype begin = bigEndianAt<quint16>(node, node.size() - 2 * (place + 1));
        const qsizetype end = bigEndianAt<quint16>(node, node.size() - 2 * (place + 2));
        if (begin < nodeDescriptorSize || end > node.size() || begin + 2 > end)
            return false;
        const QByteArrayView record = node.sliced(begin, end - begin);
        const qsizetype keySize = 2 + bigEndianAt<quint16>(record, 0);
        if (keySize > record.size())
            return false;
        (this->*handler)(record.first(keySize), record.sliced(keySize));
    }
    return true;
}

void HfsPlusReader::takeExtents(QByteArrayView key, QByteArrayView data)
{
    constexpr qsizetype forkKindOffset = 2;
    constexpr qsizetype fileOffset = 4;
    constexpr quint8 dataFork = 0;
    if (bigEndianAt<quint8>(key, forkKindOffset) != dataFork)
        return;
    auto &runs = m_moreRuns[bigEndianAt<quint32>(key, fileOffset)];
    for (int place = 0; place < extentsInFork; ++place)
        runs.push_back({bigEndianAt<quint32>(data, 8 * place), bigEndianAt<quint32>(data, 8 * place + 4)});
}

void HfsPlusReader::takeCatalogRecord(QByteArrayView key, QByteArrayView data)
{
    constexpr qsizetype folderRecordSize = 88;
    constexpr qsizetype fileRecordSize = 248;
    constexpr qsizetype dataForkOffset = 88;
    const quint16 kind = bigEndianAt<quint16>(data, 0);
    const bool isFolder = kind == folderRecord && data.size() >= folderRecordSize;
    if (!isFolder && !(kind == fileRecord && data.size() >= fileRecordSize))
        return;
    const quint32 folder = bigEndianAt<quint32>(key, 2);
    VolumeEntry entry = entryFrom(nameAt(key, 6), data, isFolder);
    if (!isFolder)
        entry.data = forkAt(data, dataForkOffset, entry.number);
    if (folder == rootParent) {
        m_root = entry;
        m_volumeName = entry.storedName;
    } else if (!belongsToVolume(folder, entry.storedName)) {
        m_folders[folder].push_back(std::move(entry));
    }
}

} // namespace toolchain
