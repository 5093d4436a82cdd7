#include "formats/codesignature/machosigner.h"

#include "formats/codesignature/codebundle.h"
#include "formats/codesignature/filebytes.h"
#include "formats/codesignature/pagedigests.h"
#include "formats/codesignature/slicelayout.h"
#include "formats/failures.h"
#include "support/openfile.h"
#include "support/wholefile.h"

#include <QFile>

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint64 largestFile = 0xffffffff;

/// What tells whether a file is still the one that was read.
bool isUnchanged(const struct stat &before, int descriptor)
{
    struct stat now = {};
    return fstat(descriptor, &now) == 0 && before.st_size == now.st_size
        && before.st_mtim.tv_sec == now.st_mtim.tv_sec && before.st_mtim.tv_nsec == now.st_mtim.tv_nsec;
}

/// Writes one slice with its signature at its place in the new file.
class SliceWriter {
public:
    SliceWriter(int source, int target, quint64 targetOffset, const SliceLayout &layout)
        : m_source(source)
        , m_target(target)
        , m_targetOffset(targetOffset)
        , m_layout(layout)
    {
    }

    /// Answers what went wrong, or nothing.
    Outcome writeSigned(const SignaturePlan &plan)
    {
        prepareDirectories(plan);
        const CodeReader reader = [this](quint64 offset, char *buffer, quint64 length) {
            return readCode(offset, buffer, length);
        };
        const PageSink sink = [this](const PageRun &run) { return writeRun(run); };
        if (!writeHeads()
            || !digestPages(m_layout.codeLength, plan.fields.pageShift, plan.digests, reader, sink))
            return lastSystemError();
        return writeRest(plan);
    }

    Outcome writePlain()
    {
        const CodeReader reader = [this](quint64 offset, char *buffer, quint64 length) {
            return readCode(offset, buffer, length);
        };
        const PageSink sink = [this](const PageRun &run) { return writeRun(run); };
        return digestPages(m_layout.codeLength, 0, {}, reader, sink) ? Outcome::success() : lastSystemError();
    }

private:
    struct Directory {
        quint32 slotNumber = 0;
        HashType type = HashType::sha256;
        QByteArray head;
        quint64 size = 0;
        quint64 offset = 0; ///< in the new file
    };

    /// All blobs but the last one, the CMS signature, have a length that is known before anything is
    /// digested, and so a place.
    void prepareDirectories(const SignaturePlan &plan)
    {
        for (qsizetype index = 0; index < plan.digests.size(); ++index) {
            const HashType type = plan.digests[index];
            const CodeDirectoryFields fields = directoryFields(plan, type, m_layout.codeLength);
            const QByteArray head = codeDirectoryHead(fields, specialSlotsOf(plan, type));
            const quint64 size = quint64(head.size()) + fields.codeSlotCount() * quint64(hashSize(type));
            m_directories.append({directorySlot(index), type, head, size, 0});
        }
        m_components = componentBlobs(plan);
        quint64 offset = m_targetOffset + m_layout.codeLength + indexSize();
        for (const auto &[type, size] : index()) {
            for (Directory &directory : m_directories) {
                if (directory.slotNumber == type)
                    directory.offset = offset;
            }
            offset += quint64(size);
        }
        m_signatureEnd = offset;
    }

    /// Types and lengths of all blobs but the CMS signature, as they lie.
    [[nodiscard]] QList<std::pair<quint32, qsizetype>> index() const
    {
        QMap<quint32, qsizetype> sizes;
        for (const Directory &directory : m_directories)
            sizes.insert(directory.slotNumber, qsizetype(directory.size));
        for (const IndexedBlob &blob : m_components.blobs())
            sizes.insert(blob.type, blob.bytes.size());
        QList<std::pair<quint32, qsizetype>> index;
        for (auto size = sizes.begin(); size != sizes.end(); ++size)
            index.append({size.key(), *size});
        return index;
    }

    [[nodiscard]] quint64 indexSize() const
    {
        constexpr quint64 header = 12;
        constexpr quint64 entry = 8;
        return header + entry * (quint64(m_directories.size()) + quint64(m_components.blobs().size()) + 1);
    }

    bool writeHeads()
    {
        for (const Directory &directory : m_directories) {
            if (!writeAt(m_target, directory.head, directory.offset))
                return false;
        }
        return true;
    }

    bool readCode(quint64 offset, char *buffer, quint64 length) const
    {
        const auto head = quint64(m_layout.head.size());
        const quint64 copiedEnd = std::min(offset + length, m_layout.copiedLength);
        const quint64 copied = copiedEnd > offset ? copiedEnd - offset : 0;
        if (copied > 0 && !readAt(m_source, buffer, copied, m_layout.source.offset + offset))
            return false;
        std::memset(buffer + copied, 0, length - copied);
        if (offset < head)
            std::memcpy(buffer, m_layout.head.constData() + offset, std::min(length, head - offset));
        return true;
    }

    bool writeRun(const PageRun &run) const
    {
        if (!writeAt(m_target, run.code, m_targetOffset + run.offset))
            return false;
        for (qsizetype index = 0; index < run.digests.size(); ++index) {
            const Directory &directory = m_directories[index];
            const quint64 at = directory.offset + quint64(directory.head.size())
                + run.firstPage * quint64(hashSize(directory.type));
            if (!writeAt(m_target, run.digests[index], at))
                return false;
        }
        return true;
    }

    /// Digests the finished directories, and writes the blobs that depend on them.
    Outcome writeRest(const SignaturePlan &plan)
    {
        QList<DirectoryDigest> digests;
        for (const Directory &directory : m_directories) {
            digests.append({directory.type, directoryDigest(directory, directory.type)});
            if (digests.last().digest.isEmpty())
                return lastSystemError();
        }
        const auto cms = cmsBlob(plan, directoryDigest(m_directories.first(), HashType::sha256), digests);
        if (!cms)
            return cms.failure();
        const quint64 end = m_signatureEnd - m_targetOffset - m_layout.codeLength + quint64(cms->size());
        if (end > m_layout.signatureRoom)
            return Error{text::tooLarge};
        return writeBlobs(*cms) ? Outcome::success() : lastSystemError();
    }

    bool writeBlobs(const QByteArray &cms)
    {
        QList<std::pair<quint32, qsizetype>> all = index();
        all.append({slot::cms, cms.size()});
        const quint64 start = m_targetOffset + m_layout.codeLength;
        bool isWritten = writeAt(m_target, superBlobIndex(magic::embeddedSignature, all), start);
        quint64 offset = start + indexSize();
        for (const auto &[type, size] : index()) {
            const QByteArray blob = m_components.blob(type);
            isWritten = isWritten && (blob.isNull() || writeAt(m_target, blob, offset));
            offset += quint64(size);
        }
        return isWritten && writeAt(m_target, cms, offset);
    }

    [[nodiscard]] QByteArray directoryDigest(const Directory &directory, HashType type) const
    {
        constexpr quint64 blockSize = 1 << 16;
        Digest digest(type);
        QByteArray block(blockSize, Qt::Uninitialized);
        for (quint64 at = 0; at < directory.size; at += blockSize) {
            const quint64 length = std::min(blockSize, directory.size - at);
            if (!readAt(m_target, block.data(), length, directory.offset + at))
                return {};
            digest.add(QByteArrayView(block).first(qsizetype(length)));
        }
        return digest.result();
    }

    const int m_source;
    const int m_target;
    const quint64 m_targetOffset;
    const SliceLayout &m_layout;
    QList<Directory> m_directories;
    SuperBlob m_components;
    quint64 m_signatureEnd = 0; ///< where the CMS signature is to begin
};

/// Writes a file anew, slice after slice.
class FileWriter {
public:
    FileWriter(const QString &path, const MachOImage &image)
        : m_image(image)
        , m_path(QFile::encodeName(path).toStdString())
        , m_source(m_path)
    {
    }

    template <typename WriteSlice>
    Outcome write(const QList<SliceLayout> &layouts, const BeforeReplacing &beforeReplacing,
                  const WriteSlice &writeSlice)
    {
        if (m_source.descriptor() < 0 || fstat(m_source.descriptor(), &m_before) != 0)
            return lastSystemError();
        WholeFile target(m_path, m_path + ".cstemp");
        if (target.descriptor() < 0)
            return lastSystemError();
        const Outcome written = writeInto(target.descriptor(), layouts, writeSlice);
        if (!written)
            return written;
        if (!isUnchanged(m_before, m_source.descriptor()))
            return Error{u"was changed by somebody else while it was signed"_s};
        if (!target.takeAfter(m_source.descriptor()))
            return lastSystemError();
        const Outcome prepared = beforeReplacing ? beforeReplacing() : Outcome::success();
        if (!prepared)
            return prepared;
        return target.finish() ? Outcome::success() : lastSystemError();
    }

private:
    template <typename WriteSlice>
    Outcome writeInto(int target, const QList<SliceLayout> &layouts, const WriteSlice &writeSlice)
    {
        const QList<quint64> offsets = m_image.isUniversal ? sliceOffsets(layouts) : QList<quint64>{0};
        const quint64 size = offsets.last() + layouts.last().length();
        if (size > largestFile)
            return Error{text::tooLarge};
        if (ftruncate(target, off_t(size)) != 0)
            return lastSystemError();
        if (m_image.isUniversal && !writeAt(target, universalHeader(m_image, layouts), 0))
            return lastSystemError();
        for (qsizetype index = 0; index < layouts.size(); ++index) {
            SliceWriter writer(m_source.descriptor(), target, offsets[index], layouts[index]);
            const Outcome written = writeSlice(writer, index);
            if (!written)
                return written;
        }
        return {};
    }

    const MachOImage &m_image;
    const std::string m_path;
    const OpenFile m_source;
    struct stat m_before = {};
};

Result<MachOImage> readWritable(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Error{file.errorString()};
    auto image = readMachOImage(file);
    if (!image)
        return Error{text::badObject + u'\n' + image.error()};
    if (image->hasWideHeader)
        return Error{text::badObject + u"\nit is a universal file with 64-bit offsets"_s};
    if (image->size > largestFile)
        return Error{text::badObject + u"\nit has 4 GiB or more"_s};
    if (image->hasMoreBehindSlices())
        return Error{text::strictExecutable + u"\nthere is more behind its last slice"_s};
    return image;
}

} // namespace

Outcome signMachO(const QString &path, const QList<SignaturePlan> &plans,
                  const BeforeReplacing &beforeReplacing)
{
    const auto image = readWritable(path);
    if (!image)
        return image.failure();
    QList<SliceLayout> layouts;
    for (qsizetype index = 0; index < image->slices.size(); ++index) {
        const MachOSlice &slice = image->slices[index];
        const quint64 room = roomForSignature(plans[index], codeLengthFor(slice));
        auto layout = layoutWithSignature(slice, room, plans[index].segmentAlignment);
        if (!layout)
            return layout.failure();
        layouts.append(*std::move(layout));
    }
    return FileWriter(path, *image)
        .write(layouts, beforeReplacing,
               [&plans](SliceWriter &writer, qsizetype index) { return writer.writeSigned(plans[index]); });
}

Outcome stripMachO(const QString &path)
{
    const auto image = readWritable(path);
    if (!image)
        return image.failure();
    QList<SliceLayout> layouts;
    for (const MachOSlice &slice : image->slices) {
        auto layout = layoutWithoutSignature(slice);
        if (!layout)
            return layout.failure();
        layouts.append(*std::move(layout));
    }
    return FileWriter(path, *image).write(layouts, {}, [](SliceWriter &writer, qsizetype) {
        return writer.writePlain();
    });
}

} // namespace toolchain::codesignature
