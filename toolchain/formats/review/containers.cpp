#include "formats/review/containers.h"

#include "formats/codesignature/filesigner.h"
#include "formats/codesignature/verification.h"
#include "formats/package/packagejudgement.h"
#include "formats/udif/imagesignature.h"

namespace toolchain::review {

namespace {

using package::PackageJudgement;

/// The hash by which a ticket names an image without a signature.
std::optional<ContainerHash> impliedHash(const QString &image)
{
    const auto implied = codesignature::impliedSignatureOfImage(image);
    const auto directory = implied
        ? codesignature::CodeDirectory::parse(implied->blob(codesignature::slot::codeDirectory))
        : implied.failure();
    return directory ? std::optional(ContainerHash{directory->cdHash(), 2}) : std::nullopt;
}

QList<Objection> objectionsTo(const PackageJudgement &judgement)
{
    switch (judgement.verdict) {
    case PackageJudgement::Verdict::notSigned:
        return {Objection::notSigned};
    case PackageJudgement::Verdict::damaged:
        return {Objection::invalid};
    case PackageJudgement::Verdict::untrusted:
        return {Objection::notDeveloperId};
    case PackageJudgement::Verdict::good:
        break;
    }
    return judgement.timestamp ? QList<Objection>() : QList{Objection::noTimestamp};
}

} // namespace

ContainerFacts imageFacts(const QString &path, const TrustStore &store)
{
    const auto code = codesignature::readSignedCode(path);
    if (!code || code->kind != codesignature::CodeKind::diskImage)
        return {};
    if (!code->isSigned())
        return {{}, impliedHash(path)};
    const SignatureFacts signature = signatureFacts(code->native(), store);
    if (signature.isInvalid || !codesignature::verifyCode(path, {}).problem.isNone())
        return {{Objection::invalid}, std::nullopt};
    if (!signature.isDeveloperId)
        return {{Objection::notDeveloperId}, std::nullopt};
    return {{}, ContainerHash{signature.cdHash, signature.hashType == 1 ? 1 : 2}};
}

ContainerFacts packageFacts(const QString &path)
{
    const auto archive = xar::Archive::looksLikeOne(path) ? xar::Archive::open(path) : platform::Error{};
    if (!archive)
        return {};
    // A package's record is named "2/1/…" whatever the kind of its checksum.
    return {objectionsTo(package::judgePackage(*archive)), ContainerHash{archive->checksum().left(20), 1}};
}

ContainerFacts nestedFacts(const QString &path, const TrustStore &store)
{
    if (!xar::Archive::looksLikeOne(path))
        return udif::endsAsDiskImage(path) ? imageFacts(path, store) : ContainerFacts();
    ContainerFacts facts = packageFacts(path);
    if (!facts.objections.isEmpty())
        facts.hash.reset();
    facts.objections.removeAll(Objection::notSigned);
    return facts;
}

} // namespace toolchain::review
