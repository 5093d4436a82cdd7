#include "formats/codesignature/filesigner.h"

#include "formats/codesignature/requirement.h"
#include "formats/failures.h"

#include "formats/codesignature/filebytes.h"
#include "formats/codesignature/pagedigests.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/fileattributes.h"
#include "formats/udif/imagesignature.h"
#include "support/openfile.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesignature {

namespace {

/// One digest of each kind over all bytes of a file up to a length.
Result<QList<QByteArray>> digestsOfFile(const QString &path, quint64 length, const QList<HashType> &kinds)
{
    const OpenFile file(QFile::encodeName(path).toStdString());
    struct stat before = {};
    struct stat behind = {};
    if (file.descriptor() < 0 || fstat(file.descriptor(), &before) != 0)
        return lastSystemError();
    QList<QByteArray> digests(kinds.size());
    const CodeReader reader = [&file](quint64 offset, char *buffer, quint64 size) {
        return readAt(file.descriptor(), buffer, size, offset);
    };
    const PageSink sink = [&digests](const PageRun &run) {
        if (!run.digests.isEmpty())
            digests = run.digests;
        return true;
    };
    if (!digestPages(length, 0, kinds, reader, sink) || fstat(file.descriptor(), &behind) != 0)
        return lastSystemError();
    if (before.st_size != behind.st_size || before.st_mtim.tv_nsec != behind.st_mtim.tv_nsec
        || before.st_mtim.tv_sec != behind.st_mtim.tv_sec)
        return Error{u"was changed by somebody else while it was signed"_s};
    return digests;
}

/// The bytes as they lie in a file or attribute of their own.
QByteArray storedForm(const IndexedBlob &blob)
{
    return isStoredRaw(blob.type) ? blobContent(blob.bytes).toByteArray() : blob.bytes;
}

} // namespace

Result<SuperBlob> signatureOfFile(const QString &path, quint64 length, const SignaturePlan &plan)
{
    const auto code = digestsOfFile(path, length, plan.digests);
    if (!code)
        return code.failure();
    SuperBlob blobs = componentBlobs(plan);
    QList<DirectoryDigest> digests;
    QByteArray contentDigest;
    for (qsizetype index = 0; index < plan.digests.size(); ++index) {
        const HashType type = plan.digests[index];
        const QByteArray directory =
            codeDirectoryHead(directoryFields(plan, type, length), specialSlotsOf(plan, type))
            + (*code)[index];
        blobs.set(directorySlot(index), directory);
        digests.append({type, digestOf(directory, type)});
        if (index == 0)
            contentDigest = digestOf(directory, HashType::sha256);
    }
    const auto cms = cmsBlob(plan, contentDigest, digests);
    if (!cms)
        return cms.failure();
    blobs.set(slot::cms, *cms);
    return blobs;
}

Outcome removeAttributesOfSignature(const QString &path)
{
    const auto attributes = readAttributes(path);
    if (!attributes)
        return attributes.failure();
    for (const QByteArray &name : attributes->keys()) {
        const Outcome removed =
            name.startsWith(signatureAttributes) ? removeAttribute(path, name) : Outcome::success();
        if (!removed)
            return removed;
    }
    return {};
}

Outcome signByAttributes(const QString &path, const SignaturePlan &plan)
{
    const auto blobs = signatureOfFile(path, quint64(QFileInfo(path).size()), plan);
    if (!blobs)
        return blobs.failure();
    Outcome done = removeAttributesOfSignature(path);
    for (const IndexedBlob &blob : blobs->blobs()) {
        if (done)
            done = writeAttribute(path, signatureAttributes + slotFileName(blob.type).toUtf8(),
                                  storedForm(blob));
    }
    return done;
}

Outcome signBesideSeal(const QString &mainFile, const QString &sealFolder, const SignaturePlan &plan)
{
    const auto blobs = signatureOfFile(mainFile, quint64(QFileInfo(mainFile).size()), plan);
    if (!blobs)
        return blobs.failure();
    for (const IndexedBlob &blob : blobs->blobs()) {
        const Outcome written =
            writeFileAt((sealFolder + u'/' + slotFileName(blob.type)).toStdString(), storedForm(blob));
        if (!written)
            return written;
    }
    return {};
}

Outcome signDiskImage(const QString &path, SignaturePlan plan)
{
    const auto place = udif::readSignaturePlace(path);
    if (!place)
        return Error{text::badImage};
    plan.components.insert(slot::imageTrailer, place->trailerToDigest());
    const auto blobs = signatureOfFile(path, place->contentLength, plan);
    return blobs ? udif::replaceImageSignature(path, blobs->bytes()) : blobs.failure();
}

platform::Result<SuperBlob> impliedSignatureOfImage(const QString &path)
{
    const auto place = udif::readSignaturePlace(path);
    if (!place)
        return platform::Error{text::badImage};
    SignaturePlan plan;
    plan.fields.flags = codeflag::adhoc;
    plan.fields.identifier = QStringLiteral("disk-image");
    plan.digests = {HashType::sha256};
    plan.components.insert(slot::requirements, requirementSetBlob({}));
    plan.components.insert(slot::imageTrailer, place->trailerToDigest());
    return signatureOfFile(path, place->contentLength, plan);
}

} // namespace toolchain::codesignature
