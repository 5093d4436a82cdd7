#include "formats/codesignature/signatureplan.h"

using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint32 versionOfEstimate = 0x20500;
constexpr quint64 alignment = 16;

bool isBlob(quint32 slotNumber)
{
    return slotNumber == slot::requirements || slotNumber == slot::entitlements
        || slotNumber == slot::entitlementsDer;
}

quint32 highestSlot(const SignaturePlan &plan)
{
    const quint32 component = plan.components.isEmpty() ? 0 : plan.components.lastKey();
    return plan.digestedFiles.isEmpty() ? component : std::max(component, plan.digestedFiles.lastKey());
}

} // namespace

CodeDirectoryFields directoryFields(const SignaturePlan &plan, HashType digest, quint64 codeLimit)
{
    CodeDirectoryFields fields = plan.fields;
    fields.hashType = digest;
    fields.codeLimit = codeLimit;
    return fields;
}

SpecialSlots specialSlotsOf(const SignaturePlan &plan, HashType digest)
{
    SpecialSlots digests;
    for (auto component = plan.components.begin(); component != plan.components.end(); ++component)
        digests.insert(component.key(), digestOf(*component, digest));
    for (auto file = plan.digestedFiles.begin(); file != plan.digestedFiles.end(); ++file)
        digests.insert(file.key(), file->at(plan.digests.indexOf(digest)));
    return digests;
}

quint32 directorySlot(qsizetype index)
{
    return index == 0 ? slot::codeDirectory : slot::firstAlternateDirectory + quint32(index) - 1;
}

SuperBlob componentBlobs(const SignaturePlan &plan)
{
    SuperBlob blobs;
    for (auto component = plan.components.begin(); component != plan.components.end(); ++component) {
        if (isBlob(component.key()))
            blobs.set(component.key(), *component);
    }
    return blobs;
}

quint64 roomForSignature(const SignaturePlan &plan, quint64 codeLimit)
{
    const SuperBlob blobs = componentBlobs(plan);
    constexpr quint64 entrySize = 8;
    quint64 room = quint64(blobs.size()) + entrySize + plan.cmsRoom;
    for (const HashType digest : plan.digests)
        room += entrySize
            + codeDirectorySize(directoryFields(plan, digest, codeLimit), highestSlot(plan),
                                versionOfEstimate);
    return (room + alignment - 1) & ~(alignment - 1);
}

Result<QByteArray> cmsBlob(const SignaturePlan &plan, const QByteArray &contentDigest,
                           const QList<DirectoryDigest> &directories)
{
    if (!plan.makeCms)
        return makeBlob(magic::wrapper, {});
    const auto cms = plan.makeCms(contentDigest, directories);
    if (!cms)
        return cms.failure();
    return makeBlob(magic::wrapper, *cms);
}

} // namespace toolchain::codesignature
