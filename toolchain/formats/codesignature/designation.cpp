#include "formats/codesignature/designation.h"

using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

QList<QByteArray> cdHashesOf(const SignedCode &code)
{
    QList<const SignedPart *> parts{&code.native()};
    for (const SignedPart &part : code.parts) {
        if (&part != parts.first())
            parts.append(&part);
    }
    QList<QByteArray> hashes;
    for (const SignedPart *part : parts) {
        for (const CodeDirectory &directory : part->directories)
            hashes.append(directory.cdHash());
    }
    return hashes;
}

Result<QByteArray> designatedRequirementOf(const SignedCode &code)
{
    const QByteArray blob = code.native().requirements();
    const auto set = blob.isEmpty() ? Result<RequirementSet>(RequirementSet()) : readRequirementSet(blob);
    if (!set)
        return set.failure();
    const QByteArray own = set->value(RequirementType::designated);
    return own.isEmpty() ? requirementForCdHashes(cdHashesOf(code)) : own;
}

Result<NestedDesignation> designationOf(const QString &path)
{
    const auto code = readCodeSignature(path);
    if (!code)
        return code.failure();
    const auto requirement = designatedRequirementOf(*code);
    if (!requirement)
        return requirement.failure();
    const auto text = requirementText(*requirement);
    if (!text)
        return text.failure();
    return NestedDesignation{code->native().cdHash(), *text};
}

} // namespace toolchain::codesignature
