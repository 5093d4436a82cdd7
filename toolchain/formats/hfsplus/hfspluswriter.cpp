#include "formats/hfsplus/hfspluswriter.h"

#include "formats/appledouble.h"
#include "formats/failures.h"
#include "formats/fileattributes.h"
#include "formats/hfsplus/hfsplusformat.h"
#include "support/openfile.h"

#include <QFile>
#include <QRandomGenerator>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace hfsplus;

namespace {

constexpr quint32 blockSize = 4096;
constexpr quint64 mostBlocks = std::numeric_limits<quint32>::max();

constexpr quint64 blocksFor(quint64 bytes)
{
    return (bytes + blockSize - 1) / blockSize;
}

/// The space for a map with one bit for each block, itself among them.
quint64 allocationBlocksFor(quint64 otherBlocks)
{
    constexpr quint64 bitsInBlock = blockSize * 8;
    return (otherBlocks + bitsInBlock - 2) / (bitsInBlock - 1);
}

Fork forkAt(quint64 &nextBlock, quint64 blocks)
{
    const Fork fork{blocks * blockSize, quint32(nextBlock), quint32(blocks)};
    nextBlock += blocks;
    return fork;
}

} // namespace

HfsPlusWriter::HfsPlusWriter(SourceTree tree, qint64 time)
    : m_items(std::move(tree.items))
    , m_time(time)
    , m_outcome(std::move(tree.outcome))
{
    if (m_outcome)
        layOutFiles();
    if (m_outcome)
        layOutSpecialFiles();
}

quint64 HfsPlusWriter::size() const
{
    return quint64(m_summary.blockCount) * blockSize;
}

/// Block 0 holds the volume header. A tree without records comes next, since some readers do not take a
/// volume that lacks it. The files follow.
void HfsPlusWriter::layOutFiles()
{
    m_extents = treeFile({}, extentsForm);
    quint64 nextBlock = 1;
    m_summary.extents = forkAt(nextBlock, blocksFor(quint64(m_extents.size())));
    for (SourceItem &item : m_items) {
        bool fits = layOut(item.data, nextBlock) && layOut(item.resource, nextBlock);
        for (SourceAttribute &attribute : item.attributes)
            fits = fits && layOut(attribute.fork, nextBlock);
        if (!fits) {
            m_outcome = failureOf(item.path, "the volume becomes too large");
            return;
        }
        ++(item.isFolder() ? m_summary.folderCount : m_summary.fileCount);
    }
    m_summary.attributes.firstBlock = quint32(nextBlock);
}

bool HfsPlusWriter::layOut(Fork &fork, quint64 &nextBlock)
{
    const quint64 blocks = blocksFor(fork.size);
    if (blocks > mostBlocks / 2 || nextBlock + blocks > mostBlocks / 2)
        return false;
    const quint64 size = fork.size;
    fork = forkAt(nextBlock, blocks);
    fork.size = size;
    return true;
}

/// The trees of attributes and names and the map of blocks lie behind the files, since their sizes depend on
/// them.
void HfsPlusWriter::layOutSpecialFiles()
{
    const auto records = catalogRecords(m_items, m_time);
    if (!records) {
        m_outcome = records.failure();
        return;
    }
    m_catalog = treeFile(*records, catalogForm);
    m_attributes = treeFile(attributeRecords(m_items), attributesForm);
    if (m_catalog.isEmpty() || m_attributes.isEmpty()) {
        m_outcome = platform::Error{u"there are too many files for one volume"_s};
        return;
    }
    quint64 nextBlock = m_summary.attributes.firstBlock;
    m_summary.attributes = forkAt(nextBlock, blocksFor(quint64(m_attributes.size())));
    m_summary.catalog = forkAt(nextBlock, blocksFor(quint64(m_catalog.size())));
    constexpr quint64 lastBlock = 1; // with the copy of the volume header
    m_summary.allocation = forkAt(nextBlock, allocationBlocksFor(nextBlock + lastBlock));
    m_summary.blockSize = blockSize;
    m_summary.blockCount = quint32(nextBlock + lastBlock);
    m_summary.nextItem = catalogNumber(m_items.size());
    --m_summary.folderCount; // the root folder is not counted
    m_summary.identifier = QRandomGenerator::system()->generate64();
}

bool HfsPlusWriter::write(const ByteSink &sink)
{
    m_sink = sink;
    m_written = 0;
    const QByteArray header = volumeHeader(m_summary, m_time);
    bool goesOn = writeBytes(QByteArray(volumeHeaderOffset, '\0')) && writeBytes(header) && writePadding()
        && writeBytes(m_extents);
    for (const SourceItem &item : m_items)
        goesOn = goesOn && writeItem(item) && writePadding() && writeForks(item);
    return goesOn && writeBytes(m_attributes) && writeBytes(m_catalog) && writeBytes(allocationBytes())
        && writeBytes(QByteArray(blockSize - volumeHeaderOffset, '\0')) && writeBytes(header)
        && writePadding();
}

bool HfsPlusWriter::writeItem(const SourceItem &item)
{
    if (item.isFolder() || item.isHardLink())
        return true;
    return item.isLink() ? writeBytes(item.linkTarget) : writeFile(item);
}

/// Writes the resource fork and the long attributes, whose values have not been kept since the tree was read.
bool HfsPlusWriter::writeForks(const SourceItem &item)
{
    const auto isLong = [](const SourceAttribute &attribute) { return attribute.fork.size > 0; };
    if (item.resource.size == 0 && std::none_of(item.attributes.begin(), item.attributes.end(), isLong))
        return true;
    const auto values = readAttributes(QFile::decodeName(QByteArray::fromStdString(item.path.native())));
    if (!values) {
        m_outcome = values.failure();
        return false;
    }
    bool goesOn = writeFork(item, item.resource, values->value(appledouble::resourceFork));
    for (const SourceAttribute &attribute : item.attributes) {
        if (isLong(attribute))
            goesOn = goesOn && writeFork(item, attribute.fork, values->value(attribute.name.toUtf8()));
    }
    return goesOn;
}

bool HfsPlusWriter::writeFork(const SourceItem &item, const Fork &fork, const QByteArray &bytes)
{
    if (quint64(bytes.size()) != fork.size) {
        m_outcome = failureOf(item.path, "its attributes changed while they were read");
        return false;
    }
    return writeBytes(bytes) && writePadding();
}

/// Writes exactly the size for which the catalog has been made.
bool HfsPlusWriter::writeFile(const SourceItem &item)
{
    const OpenFile file(item.path);
    if (file.descriptor() < 0) {
        m_outcome = systemFailure(item.path, errno);
        return false;
    }
    QByteArray buffer(256 << 10, Qt::Uninitialized);
    for (quint64 left = item.data.size; left > 0;) {
        const auto wanted = std::min(left, quint64(buffer.size()));
        const ssize_t length = read(file.descriptor(), buffer.data(), wanted);
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0) {
            m_outcome = length < 0 ? systemFailure(item.path, errno)
                                   : failureOf(item.path, "became shorter while it was read");
            return false;
        }
        if (!writeBytes({buffer.constData(), length}))
            return false;
        left -= quint64(length);
    }
    return true;
}

bool HfsPlusWriter::writeBytes(QByteArrayView bytes)
{
    m_written += quint64(bytes.size());
    return m_sink(bytes);
}

/// Fills the block up with zeros.
bool HfsPlusWriter::writePadding()
{
    const auto overhang = m_written % blockSize;
    return overhang == 0 || writeBytes(QByteArray(qsizetype(blockSize - overhang), '\0'));
}

/// One bit for each block, set for those in use: all there are.
QByteArray HfsPlusWriter::allocationBytes() const
{
    QByteArray bits(qsizetype(m_summary.blockCount / 8), '\xff');
    if (m_summary.blockCount % 8 != 0)
        bits.append(char(0xff << (8 - m_summary.blockCount % 8)));
    return bits.leftJustified(qsizetype(m_summary.allocation.size), '\0');
}

} // namespace toolchain
