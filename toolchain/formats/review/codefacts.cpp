#include "formats/review/codefacts.h"

#include "formats/codesignature/entitlementsder.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/review/signer.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::review {

using namespace codesignature;

namespace {

// Apple's <mach-o/loader.h> and <mach/machine.h>.
constexpr quint32 debugSymbols = 10;
constexpr quint32 objectFile = 1;
constexpr quint32 coreDump = 4;
constexpr quint32 libraryStub = 9;

constexpr quint64 longestSignature = 256 << 20;

QString platformName(quint32 platform)
{
    static const QStringList names{QString(),
                                   u"macos"_s,
                                   u"ios"_s,
                                   u"tvos"_s,
                                   u"watchos"_s,
                                   u"bridgeos"_s,
                                   u"maccatalyst"_s,
                                   u"iossimulator"_s,
                                   u"tvossimulator"_s,
                                   u"watchossimulator"_s,
                                   u"driverkit"_s,
                                   u"visionos"_s,
                                   u"visionossimulator"_s};
    return names.value(platform, u"platform "_s + QString::number(platform));
}

bool isKnownToMacs(const MachOSlice &slice)
{
    return slice.cpuType == cpuX86 || slice.cpuType == cpuX86_64 || slice.cpuType == cpuArm64;
}

SignatureState stateOf(const SignedPart &part)
{
    if (!part.damage.isEmpty())
        return SignatureState::damaged;
    if (!part.isSigned())
        return SignatureState::none;
    if (part.isLinkerSigned())
        return SignatureState::linker;
    return part.cms().isEmpty() ? SignatureState::adHoc : SignatureState::certified;
}

SignedPart partOf(QIODevice &file, const MachOSlice &slice)
{
    if (!slice.signature)
        return {};
    const ByteRange data = slice.signature->data;
    SignedPart damaged;
    if (data.length > longestSignature) {
        damaged.damage = u"the signature is too large"_s;
        return damaged;
    }
    auto part = readSignedPart(bytesAt(file, slice.place.offset + data.offset, data.length));
    if (part)
        return *std::move(part);
    damaged.damage = part.error();
    return damaged;
}

SliceFacts factsOf(QIODevice &file, const MachOSlice &slice, const TrustStore &store)
{
    SliceFacts facts;
    facts.architecture = slice.architecture();
    facts.fileType = quint32(slice.fileType);
    facts.runsOnMacs = isKnownToMacs(slice);
    if (const MachOVersion *version = slice.version()) {
        facts.platform = platformName(version->platform);
        facts.minimumSystem = version->minimumSystem;
        facts.sdk = version->sdk;
    }
    facts.signature = signatureFacts(partOf(file, slice), store);
    return facts;
}

} // namespace

bool SliceFacts::isExecutable() const
{
    return fileType == quint32(MachOFileType::executable);
}

bool SliceFacts::mustBeSigned() const
{
    return fileType != objectFile && fileType != coreDump && fileType != libraryStub
        && fileType != debugSymbols;
}

bool CodeFacts::mustBeSigned() const
{
    return std::any_of(slices.cbegin(), slices.cend(),
                       [](const SliceFacts &slice) { return slice.mustBeSigned(); });
}

bool CodeFacts::isExecutable() const
{
    return std::any_of(slices.cbegin(), slices.cend(),
                       [](const SliceFacts &slice) { return slice.isExecutable(); });
}

SignatureFacts signatureFacts(const SignedPart &part, const TrustStore &store)
{
    SignatureFacts facts;
    facts.state = stateOf(part);
    if (!part.isSigned())
        return facts;
    const CodeDirectory &directory = part.best();
    facts.identifier = directory.fields().identifier;
    facts.team = directory.fields().team;
    facts.hasRuntime = (directory.fields().flags & codeflag::runtime) != 0;
    facts.cdHash = directory.cdHash();
    facts.hashType = int(directory.fields().hashType);
    facts.entitlements = readEntitlements(part.entitlements()).valueOr({});
    if (facts.state != SignatureState::certified)
        return facts;
    const SignerFacts signer = signerFacts(part, store);
    facts.authorities = signer.names;
    facts.isDeveloperId = signer.isDeveloperId;
    facts.timestamp = signer.timestamp;
    facts.isInvalid = !signer.problem.isEmpty();
    return facts;
}

CodeFacts readCodeFacts(const QString &path, const TrustStore &store)
{
    CodeFacts facts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        facts.damage = file.errorString();
        return facts;
    }
    const auto image = readMachOImage(file);
    if (!image) {
        facts.damage = image.error();
        return facts;
    }
    for (const MachOSlice &slice : image->slices)
        facts.slices.append(factsOf(file, slice, store));
    return facts;
}

} // namespace toolchain::review
