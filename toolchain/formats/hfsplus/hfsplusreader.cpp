#include "formats/hfsplus/hfsplusreader.h"

#include "formats/bigendian.h"
#include "formats/hfsplus/compressedfile.h"
#include "formats/hfsplus/hfsplusformat.h"

#include <sys/stat.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;

namespace toolchain {

using namespace hfsplus;

namespace {

const QString damaged = u"the volume is damaged"_s;
constexpr qsizetype pieceSize = 256 << 10;
constexpr quint8 compressedFlag = 0x20;
const QString compressionAttribute = u"com.apple.decmpfs"_s;

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

/// What macOS shows of the Finder's information: without what the file system keeps there for itself, the
/// date when an item was added and two counters. None if nothing is left.
QByteArray readableFinderInfo(QByteArrayView bytes)
{
    constexpr qsizetype ownSize = 8; // at 16 a document's number and the date
    constexpr qsizetype counterSize = 4;
    QByteArray info = bytes.toByteArray();
    info.replace(16, ownSize, QByteArray(ownSize, '\0'));
    info.replace(finderInfoSize - counterSize, counterSize, QByteArray(counterSize, '\0'));
    return info.count('\0') == info.size() ? QByteArray() : info;
}

VolumeEntry entryFrom(const QString &name, QByteArrayView record, bool isFolder)
{
    constexpr qsizetype numberOffset = 8;
    constexpr qsizetype modifiedOffset = 16;
    constexpr qsizetype accessedOffset = 24;
    constexpr qsizetype ownerFlagsOffset = 41;
    constexpr qsizetype specialOffset = 44;
    constexpr qsizetype finderTypeOffset = 48;
    constexpr qsizetype encodingOffset = 80;
    VolumeEntry entry;
    entry.number = bigEndianAt<quint32>(record, numberOffset);
    entry.storedName = name;
    if (bigEndianAt<quint32>(record, encodingOffset) == composedNameEncoding)
        entry.nameForm = NameForm::composed;
    entry.mode = modeAt(record, isFolder);
    entry.modified = dateAt(record, modifiedOffset);
    entry.accessed = dateAt(record, accessedOffset);
    const QByteArrayView finderInfo = record.sliced(finderTypeOffset, finderInfoSize);
    const bool isHardLink = !isFolder && finderInfo.startsWith("hlnkhfs+");
    entry.link = isHardLink ? bigEndianAt<quint32>(record, specialOffset) : 0;
    entry.isBrokenLink = isHardLink || (!isFolder && finderInfo.startsWith("fdrpMACS"));
    if (!S_ISLNK(entry.mode))
        entry.finderInfo = readableFinderInfo(finderInfo);
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
        || !readTree(forkAt(header, hfsplus::extentsFork, {extentsFile, ForkKind::data}),
                     &HfsPlusReader::takeExtents)
        || !readTree(forkAt(header, hfsplus::catalogFork, {catalogFile, ForkKind::data}),
                     &HfsPlusReader::takeCatalogRecord)
        || m_root.number != hfsplus::rootFolder) {
        if (m_outcome)
            m_outcome = Error{damaged};
        return;
    }
    const StoredFork attributes = forkAt(header, hfsplus::attributesFork, {attributesFile, ForkKind::data});
    if (attributes.size > 0 && !readTree(attributes, &HfsPlusReader::takeAttribute) && m_outcome)
        m_outcome = Error{damaged};
    followHardLinks();
}

/// Gives every hard link what belongs to the file it stands for.
void HfsPlusReader::followHardLinks()
{
    std::map<quint32, const VolumeEntry *> files;
    for (const VolumeEntry &file : entriesOf(m_linksFolder)) {
        if (file.storedName.startsWith(u"iNode"_s))
            files.emplace(file.storedName.mid(5).toUInt(), &file);
    }
    for (auto &[number, entries] : m_folders) {
        if (number == m_linksFolder)
            continue;
        for (VolumeEntry &entry : entries)
            follow(entry, files);
    }
}

void HfsPlusReader::follow(VolumeEntry &entry, const std::map<quint32, const VolumeEntry *> &files)
{
    const auto file = entry.link != 0 ? files.find(entry.link) : files.end();
    entry.link = 0;
    if (file == files.end())
        return;
    VolumeEntry linked = *file->second;
    linked.link = linked.number;
    linked.number = entry.number;
    linked.storedName = entry.storedName;
    linked.nameForm = entry.nameForm;
    entry = std::move(linked);
}

const std::vector<VolumeEntry> &HfsPlusReader::entriesOf(quint32 folder) const
{
    static const std::vector<VolumeEntry> none;
    const auto found = m_folders.find(folder);
    return found == m_folders.end() ? none : found->second;
}

StoredFork HfsPlusReader::forkAt(QByteArrayView bytes, qsizetype offset, ForkName name) const
{
    constexpr qsizetype runsOffset = 16;
    StoredFork fork;
    fork.size = bigEndianAt<quint64>(bytes, offset);
    for (int place = 0; place < extentsInFork; ++place) {
        const qsizetype run = offset + runsOffset + 8 * place;
        fork.runs.push_back({bigEndianAt<quint32>(bytes, run), bigEndianAt<quint32>(bytes, run + 4)});
    }
    if (const auto more = m_moreRuns.find(name); more != m_moreRuns.end())
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
        if (!(this->*handler)(record.first(keySize), record.sliced(keySize)))
            return false;
    }
    return true;
}

bool HfsPlusReader::takeExtents(QByteArrayView key, QByteArrayView data)
{
    constexpr qsizetype forkKindOffset = 2;
    constexpr qsizetype fileOffset = 4;
    const auto kind = ForkKind(bigEndianAt<quint8>(key, forkKindOffset));
    if (kind != ForkKind::data && kind != ForkKind::resource)
        return true;
    auto &runs = m_moreRuns[{bigEndianAt<quint32>(key, fileOffset), kind}];
    for (int place = 0; place < extentsInFork; ++place)
        runs.push_back({bigEndianAt<quint32>(data, 8 * place), bigEndianAt<quint32>(data, 8 * place + 4)});
    return true;
}

bool HfsPlusReader::takeCatalogRecord(QByteArrayView key, QByteArrayView data)
{
    constexpr qsizetype folderRecordSize = 88;
    constexpr qsizetype fileRecordSize = 248;
    constexpr qsizetype dataForkOffset = 88;
    constexpr qsizetype resourceForkOffset = 168;
    constexpr quint64 mostEntries = 2'000'000;
    const quint16 kind = bigEndianAt<quint16>(data, 0);
    const bool isFolder = kind == folderRecord && data.size() >= folderRecordSize;
    if (!isFolder && !(kind == fileRecord && data.size() >= fileRecordSize))
        return true;
    if (++m_entryCount > mostEntries) {
        m_outcome = Error{u"there are too many files on the volume to be read here"_s};
        return false;
    }
    const quint32 folder = bigEndianAt<quint32>(key, 2);
    VolumeEntry entry = entryFrom(nameAt(key, 6), data, isFolder);
    if (!isFolder) {
        entry.data = forkAt(data, dataForkOffset, {entry.number, ForkKind::data});
        entry.resource = forkAt(data, resourceForkOffset, {entry.number, ForkKind::resource});
    }
    if (folder == rootParent) {
        m_root = entry;
        m_volumeName = entry.storedName;
    } else if (folder == hfsplus::rootFolder
               && entry.storedName == QString::fromUtf16(linksFolder, linksFolderLength)) {
        m_linksFolder = entry.number;
    } else if (!belongsToVolume(folder, entry.storedName)) {
        m_folders[folder].push_back(std::move(entry));
    }
    return true;
}

bool HfsPlusReader::takeAttribute(QByteArrayView key, QByteArrayView data)
{
    constexpr qsizetype fileOffset = 4;
    constexpr qsizetype nameOffset = 12;
    constexpr qsizetype valueOffset = 16;
    constexpr quint64 mostBytes = 256 << 20;
    StoredAttribute attribute;
    attribute.name = nameAt(key, nameOffset);
    const auto kind = bigEndianAt<quint32>(data, 0);
    const auto file = bigEndianAt<quint32>(key, fileOffset);
    const auto size = bigEndianAt<quint32>(data, valueOffset - 4);
    if (kind == inlineAttribute && data.size() >= valueOffset
        && quint64(size) <= quint64(data.size() - valueOffset))
        attribute.value = data.sliced(valueOffset, size).toByteArray();
    else if (kind == forkAttribute && data.size() >= 8 + forkSize)
        attribute.fork =
            forkAt(data, 8, {attributesFile, ForkKind::resource}); // there are no more runs of these
    else
        return kind == moreOfForkAttribute;
    m_attributeBytes += quint64(attribute.value.size() + key.size());
    if (m_attributeBytes > mostBytes) {
        m_outcome = Error{u"there are too many attributes on the volume to be read here"_s};
        return false;
    }
    m_attributes[file].push_back(std::move(attribute));
    return true;
}

std::vector<StoredAttribute> HfsPlusReader::attributesOf(const VolumeEntry &entry) const
{
    const auto found = m_attributes.find(entry.attributesNumber());
    if (found == m_attributes.end())
        return {};
    std::vector<StoredAttribute> attributes = found->second;
    std::erase_if(attributes, [](const StoredAttribute &attribute) {
        return attribute.name == compressionAttribute || attribute.name == u"com.apple.ResourceFork"_s
            || attribute.name == u"com.apple.FinderInfo"_s || attribute.name.isEmpty()
            || attribute.name.startsWith(u"com.apple.system."_s); // access lists and the like of the Mac
    });
    return attributes;
}

std::optional<QByteArray> HfsPlusReader::valueOf(const StoredAttribute &attribute) const
{
    return attribute.fork.runs.empty() ? std::optional(attribute.value) : bytesOf(attribute.fork);
}

std::optional<QByteArray> HfsPlusReader::bytesOf(const StoredFork &fork) const
{
    constexpr quint64 mostBytes = 256 << 20;
    QByteArray bytes;
    const auto add = [&bytes](QByteArrayView piece) {
        bytes.append(piece);
        return true;
    };
    return fork.size <= mostBytes && read(fork, add) ? std::optional(bytes) : std::nullopt;
}

QByteArray HfsPlusReader::compressionOf(const VolumeEntry &entry) const
{
    const auto found = m_attributes.find(entry.attributesNumber());
    if (found == m_attributes.end())
        return {};
    for (const StoredAttribute &attribute : found->second) {
        if (attribute.name == compressionAttribute)
            return valueOf(attribute).value_or(QByteArray());
    }
    return {};
}

bool HfsPlusReader::canReadFile(const VolumeEntry &entry) const
{
    return !entry.isCompressed || canUnpackCompressed(compressionOf(entry));
}

bool HfsPlusReader::readFile(const VolumeEntry &entry, const ByteSink &sink) const
{
    if (!entry.isCompressed)
        return read(entry.data, sink);
    const auto fork = [this, &entry](quint64 offset, char *target, qsizetype size) {
        return offset <= entry.resource.size && quint64(size) <= entry.resource.size - offset
            && readFork(entry.resource, offset, target, size);
    };
    return unpackCompressed(compressionOf(entry), fork, entry.resource.size, sink);
}

} // namespace toolchain
