#include "formats/codesignature/signaturereader.h"

#include "formats/codesignature/signatureheads.h"
#include "formats/fileattributes.h"
#include "formats/udif/imagesignature.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint64 longestSignature = 256 << 20;

/// The blobs that lie in files or attributes of their own.
constexpr std::array<quint32, 10> storedSlots{slot::codeDirectory,
                                              slot::requirements,
                                              slot::entitlements,
                                              slot::entitlementsDer,
                                              slot::firstAlternateDirectory,
                                              slot::firstAlternateDirectory + 1,
                                              slot::firstAlternateDirectory + 2,
                                              slot::firstAlternateDirectory + 3,
                                              slot::firstAlternateDirectory + 4,
                                              slot::cms};

bool isDirectorySlot(quint32 type)
{
    return type == slot::codeDirectory
        || (type >= slot::firstAlternateDirectory && type <= slot::lastAlternateDirectory);
}

/// The first code directory and its alternates take the places that are meant for them one after the other.
quint32 placeOfDirectory(qsizetype index)
{
    return index == 0 ? slot::codeDirectory : slot::firstAlternateDirectory + quint32(index - 1);
}

Result<SignedPart> partWith(SuperBlob blobs)
{
    SignedPart part;
    for (const IndexedBlob &blob : blobs.blobs()) {
        if (!isDirectorySlot(blob.type))
            continue;
        if (blob.type != placeOfDirectory(part.directories.size()))
            return Error{u"a code directory is missing before the one in slot %1"_s.arg(blob.type)};
        auto directory = CodeDirectory::parse(blob.bytes);
        if (!directory)
            return directory.failure();
        part.directories.append(*std::move(directory));
    }
    if (blobs.blob(slot::codeDirectory).isNull())
        return Error{u"the signature has no code directory"_s};
    part.blobs = std::move(blobs);
    return part;
}

/// A part of which nothing but the damage is known.
SignedPart orDamage(Result<SignedPart> part)
{
    if (part)
        return *std::move(part);
    SignedPart damaged;
    damaged.damage = part.error();
    return damaged;
}

SignedPart partInFile(QIODevice &file, ByteRange place, SignatureDepth depth)
{
    if (place.length == 0)
        return {};
    if (depth == SignatureDepth::heads) {
        auto heads = readSignatureHeads(file, place);
        return orDamage(heads ? partWith(*std::move(heads)) : heads.failure());
    }
    if (place.length > longestSignature)
        return orDamage(Error{u"the signature takes %1 bytes"_s.arg(place.length)});
    return orDamage(readSignedPart(bytesAt(file, place.offset, place.length)));
}

SignedPart partOfSlice(QIODevice &file, const MachOSlice &slice, SignatureDepth depth)
{
    const ByteRange data = slice.signature ? slice.signature->data : ByteRange();
    SignedPart part = partInFile(file, {slice.place.offset + data.offset, data.length}, depth);
    part.architecture = slice.architecture();
    return part;
}

/// What lies in files or attributes, put together as it would stand in a Mach-O file.
template <typename Lookup>
SignedPart partFrom(const Lookup &lookup)
{
    SuperBlob blobs;
    for (const quint32 number : storedSlots) {
        const QByteArray bytes = lookup(slotFileName(number));
        if (bytes.isNull())
            continue;
        blobs.set(number, isStoredRaw(number) ? makeBlob(magic::wrapper, bytes) : bytes);
    }
    return blobs.blobs().isEmpty() ? SignedPart() : orDamage(partWith(std::move(blobs)));
}

Result<SignedPart> partInAttributes(const QString &path)
{
    const auto attributes = readAttributes(path);
    if (!attributes)
        return attributes.failure();
    return partFrom([&attributes](const QString &name) {
        const auto found = attributes->find(signatureAttributes + name.toUtf8());
        if (found == attributes->end())
            return QByteArray();
        return found->isNull() ? QByteArray("") : *found;
    });
}

SignedPart partInSealFolder(const QString &folder)
{
    return partFrom([&folder](const QString &name) {
        QFile file(folder + u'/' + name);
        const bool isOpen = QFileInfo(file.fileName()).isFile() && file.open(QIODevice::ReadOnly)
            && quint64(file.size()) <= longestSignature;
        const QByteArray bytes = isOpen ? file.readAll() : QByteArray();
        return isOpen && bytes.isNull() ? QByteArray("") : bytes;
    });
}

Result<SignedCode> readMachO(SignedCode code, SignatureDepth depth)
{
    QFile file(code.mainFile);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Error{file.errorString()};
    auto image = readMachOImage(file);
    if (!image)
        return Error{text::badObject + u'\n' + image.error()};
    code.kind = CodeKind::machO;
    for (const MachOSlice &slice : image->slices)
        code.parts.append(partOfSlice(file, slice, depth));
    code.image = *std::move(image);
    return code;
}

/// Object files, static libraries and the like bear no signature of their own, and count as any other file.
bool isSignedWithin(const QString &path)
{
    QFile file(path);
    if (!looksLikeMachOFile(path) || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    const auto image = readMachOImage(file);
    return image ? canHoldSignature(image->slices.first().fileType) : !isUniversalArchive(file);
}

Result<SignedCode> readDiskImage(SignedCode code)
{
    const auto signature = udif::readImageSignature(code.mainFile);
    if (!signature)
        return Error{text::badImage};
    code.kind = CodeKind::diskImage;
    code.parts.append(signature->isEmpty() ? SignedPart() : orDamage(readSignedPart(*signature)));
    return code;
}

Result<SignedCode> readFile(SignedCode code, SignatureDepth depth)
{
    if (isSignedWithin(code.mainFile))
        return readMachO(std::move(code), depth);
    if (code.bundle) {
        code.parts.append(partInSealFolder(code.bundle->sealFolder()));
        return code;
    }
    if (udif::endsAsDiskImage(code.mainFile))
        return readDiskImage(std::move(code));
    auto part = partInAttributes(code.mainFile);
    if (!part)
        return part.failure();
    code.parts.append(*std::move(part));
    return code;
}

} // namespace

bool SignedPart::isLinkerSigned() const
{
    return isSigned() && (primary().fields().flags & codeflag::linkerSigned) != 0;
}

const CodeDirectory &SignedPart::best() const
{
    return *std::max_element(directories.begin(), directories.end(),
                             [](const CodeDirectory &one, const CodeDirectory &other) {
                                 return hashRank(one.fields().hashType) < hashRank(other.fields().hashType);
                             });
}

QByteArray SignedPart::entitlements() const
{
    return blobContent(blobs.blob(slot::entitlements)).toByteArray();
}

QByteArray SignedPart::cms() const
{
    return blobContent(blobs.blob(slot::cms)).toByteArray();
}

QByteArray SignedPart::ticket() const
{
    return blobContent(blobs.blob(slot::ticket)).toByteArray();
}

QString SignedCode::formatText() const
{
    QString kindText = u"generic"_s;
    if (kind == CodeKind::machO)
        kindText = image->description();
    else if (kind == CodeKind::diskImage)
        kindText = u"disk image"_s;
    return bundle ? bundle->kindText() + u" with "_s + kindText : kindText;
}

Result<SignedPart> readSignedPart(QByteArrayView superBlob)
{
    auto blobs = SuperBlob::parse(superBlob, magic::embeddedSignature);
    if (!blobs)
        return blobs.failure();
    return partWith(*std::move(blobs));
}

QString slotFileName(quint32 slotNumber)
{
    switch (slotNumber) {
    case slot::codeDirectory:
        return u"CodeDirectory"_s;
    case slot::requirements:
        return u"CodeRequirements"_s;
    case slot::resources:
        return u"CodeResources"_s;
    case slot::entitlements:
        return u"CodeEntitlements"_s;
    case slot::entitlementsDer:
        return u"CodeEntitlementDER"_s;
    case slot::imageTrailer:
        return u"CodeRepSpecific"_s;
    case slot::cms:
        return u"CodeSignature"_s;
    default:
        // The alternate directories really are called so.
        return isDirectorySlot(slotNumber)
            ? u"CodeRequirements-%1"_s.arg(slotNumber - slot::firstAlternateDirectory + 1)
            : QString();
    }
}

bool isStoredRaw(quint32 slotNumber)
{
    return slotNumber == slot::cms || slotNumber == slot::resources;
}

Result<SignedCode> readSignedCode(const QString &path, SignatureDepth depth)
{
    SignedCode code;
    code.path = path;
    code.mainFile = path;
    const QFileInfo item(path);
    if (!item.exists())
        return Error{u"No such file or directory"_s};
    if (item.isDir()) {
        auto bundle = readCodeBundle(path);
        if (!bundle)
            return bundle.failure();
        code.mainFile = bundle->mainFile();
        code.bundle = *std::move(bundle);
    } else if (!item.isFile()) {
        return Error{text::badObject};
    } else if (auto bundle = bundleOfExecutable(path)) {
        code.path = bundle->root;
        code.mainFile = bundle->mainFile();
        code.bundle = *std::move(bundle);
    }
    return readFile(std::move(code), depth);
}

Result<SignedCode> readCodeSignature(const QString &path)
{
    auto code = readSignedCode(path);
    if (code && !code->native().damage.isEmpty())
        return Error{code->native().damage};
    if (code && !code->isSigned())
        return Error{text::notSigned};
    return code;
}

} // namespace toolchain::codesignature
