#include "codesign/itemplan.h"

#include "codesign/identifiers.h"
#include "formats/codesignature/entitlementsder.h"

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using platform::Error;
using platform::Result;

namespace toolchain::codesign {

namespace {

constexpr quint32 packed(quint32 major, quint32 minor, quint32 patch = 0)
{
    return major << 16 | minor << 8 | patch;
}

/// Systems before these know SHA-1 alone.
bool needsSha1(const MachOVersion &version)
{
    switch (version.platform) {
    case MachOVersion::macOS:
        return version.minimumSystem < packed(10, 11, 4);
    case MachOVersion::iOS:
    case MachOVersion::tvOS:
        return version.minimumSystem < packed(11, 0);
    case MachOVersion::watchOS:
        return version.minimumSystem < packed(12, 0);
    default:
        return false;
    }
}

/// Of a slice's old signature, if something of it is to be kept; a linker's has nothing that is.
const SignedPart *keptPart(const SignedCode &code, qsizetype part, const SigningOrder &order, Kept what)
{
    const SignedPart &old = code.parts[part];
    return order.kept.contains(what) && old.isSigned() && !old.isLinkerSigned() ? &old : nullptr;
}

quint32 flagsFor(const SignedCode &code, qsizetype part, const SigningOrder &order)
{
    constexpr quint32 never = codeflag::adhoc | codeflag::linkerSigned;
    quint32 flags = 0;
    if (order.flags)
        flags = *order.flags;
    else if (const SignedPart *old = keptPart(code, part, order, Kept::flags))
        flags = old->primary().fields().flags & ~never;
    else if (code.bundle)
        flags = codeFlagsNamed(code.bundle->info.value(u"CSFlags"_s).toString()).valueOr(0);
    return order.signer.isAdHoc() ? flags | codeflag::adhoc : flags;
}

QByteArray entitlementsFor(const SignedCode &code, qsizetype part, const SigningOrder &order)
{
    if (!code.image || code.image->slices[part].fileType != MachOFileType::executable)
        return {};
    if (order.entitlements)
        return *order.entitlements;
    const SignedPart *old = keptPart(code, part, order, Kept::entitlements);
    return old ? old->entitlements() : QByteArray();
}

QByteArray requirementsFor(const SignedCode &code, qsizetype part, const SigningOrder &order,
                           const QString &identifier)
{
    const SignedPart *old = keptPart(code, part, order, Kept::requirements);
    if (!order.requirements && old && !old->requirements().isEmpty())
        return old->requirements();
    RequirementSet set = order.requirements.value_or(RequirementSet());
    if (!set.contains(RequirementType::designated) && !order.signer.isAdHoc())
        set.insert(RequirementType::designated, designatedRequirementFor(identifier, order.signer.facts));
    return requirementSetBlob(set);
}

/// What a slice's head tells for its code directory.
void takeFromSlice(CodeDirectoryFields &fields, const MachOSlice &slice)
{
    constexpr quint8 largePages = 14;
    constexpr quint8 smallPages = 12;
    const MachOVersion *version = slice.version();
    const bool isArm = slice.cpuType == cpuArm64 || slice.cpuType == cpuArm64_32;
    const bool isTv = version && version->platform == MachOVersion::tvOS;
    fields.pageShift = isArm && !isTv ? largePages : smallPages;
    const MachOSegment *text = slice.segment("__TEXT");
    if (!version || !text)
        return;
    fields.execSegmentBase = text->file.offset;
    fields.execSegmentLimit = text->file.length;
    fields.execSegmentFlags = slice.fileType == MachOFileType::executable ? execseg::mainBinary : 0;
    fields.runtime = fields.flags & codeflag::runtime ? version->sdk : 0;
}

Result<QByteArray> derOf(const QByteArray &entitlements, CodeDirectoryFields &fields)
{
    const auto map = readEntitlements(entitlements);
    if (!map)
        return Error{u"unrecognized entitlement data: "_s + map.error()};
    if (fields.execSegmentLimit > 0)
        fields.execSegmentFlags |= execSegmentFlagsFor(*map);
    auto der = entitlementsAsDer(*map);
    return der ? der : Error{text::badEntitlements + u": "_s + der.error()};
}

} // namespace

QList<HashType> digestsFor(const SignedCode &code, const SigningOrder &order)
{
    if (!order.digests.isEmpty())
        return order.digests;
    if (!code.image)
        return {HashType::sha256};
    for (const MachOSlice &slice : code.image->slices) {
        for (const MachOVersion &version : slice.versions) {
            if (needsSha1(version))
                return {HashType::sha1, HashType::sha256};
        }
    }
    return {HashType::sha256};
}

QString chosenIdentifier(const SignedCode &code, const SigningOrder &order)
{
    if (!order.identifier.isEmpty())
        return order.identifier;
    if (const SignedPart *old = keptPart(code, code.nativeIndex(), order, Kept::identifier))
        return old->primary().fields().identifier;
    return identifierFor(code, order);
}

Result<SignaturePlan> planFor(const SignedCode &code, qsizetype part, const SigningOrder &order,
                              const ItemPlan &item)
{
    SignaturePlan plan;
    plan.digests = item.digests;
    plan.cmsRoom = order.cmsRoom;
    plan.makeCms = order.signer.makeCms;
    plan.fields.identifier = item.identifier;
    plan.fields.team = order.signer.team;
    plan.fields.flags = flagsFor(code, part, order);
    if (code.image)
        takeFromSlice(plan.fields, code.image->slices[part]);
    if (const SignedPart *old = keptPart(code, part, order, Kept::runtime); old && plan.fields.runtime != 0)
        plan.fields.runtime = old->best().fields().runtime;
    plan.components.insert(slot::requirements, requirementsFor(code, part, order, item.identifier));
    const QByteArray info = boundInfoPropertyList(code, part);
    if (!info.isEmpty())
        plan.components.insert(slot::infoPropertyList, info);
    if (!item.sealDigests.isEmpty())
        plan.digestedFiles.insert(slot::resources, item.sealDigests);
    const QByteArray entitlements = entitlementsFor(code, part, order);
    if (entitlements.isEmpty())
        return plan;
    const auto der = derOf(entitlements, plan.fields);
    if (!der)
        return der.failure();
    plan.components.insert(slot::entitlements, makeBlob(magic::entitlements, entitlements));
    plan.components.insert(slot::entitlementsDer, makeBlob(magic::entitlementsDer, *der));
    return plan;
}

} // namespace toolchain::codesign
