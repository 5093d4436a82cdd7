#include "formats/review/verifying.h"

#include "formats/codesignature/verification.h"
#include "formats/review/judge.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

bool wouldDo(const SliceFacts &slice)
{
    return slice.signature.state == SignatureState::certified && objectionsTo(slice).isEmpty();
}

/// A problem of one slice hides those of the others.
bool holdsAlone(const QString &path, const SliceFacts &slice, codesignature::VerificationOrder order)
{
    order.architecture = slice.architecture;
    return verifyCode(path, order).problem.isNone();
}

bool isVersionFolder(const QString &folder)
{
    const QFileInfo info(folder);
    return info.dir().dirName() == "Versions"_L1 && info.fileName() != "Current"_L1;
}

} // namespace

void verifySignatures(const QString &path, CodeFacts &facts, const TrustStore &store)
{
    if (std::none_of(facts.slices.cbegin(), facts.slices.cend(), wouldDo))
        return;
    codesignature::VerificationOrder order;
    order.strictness = codesignature::Strictness::strict;
    order.store = store;
    const auto problem = verifyCode(path, order).problem;
    if (problem.isNone())
        return;
    for (SliceFacts &slice : facts.slices) {
        const bool isMeant = problem.architecture.isEmpty() || problem.architecture == slice.architecture;
        if (isMeant || (wouldDo(slice) && !holdsAlone(path, slice, order)))
            slice.signature.isInvalid = true;
    }
}

FoundBundle bundleAt(const QString &folder, const QStringList &names)
{
    if (!names.contains(u"Contents"_s) && !names.contains(u"Info.plist"_s) && !isVersionFolder(folder))
        return {};
    const auto bundle = codesignature::readCodeBundle(folder);
    if (!bundle || bundle->executable.isEmpty())
        return {};
    return {folder, bundle->base + u'/' + bundle->executable};
}

} // namespace toolchain::review
