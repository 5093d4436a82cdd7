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

bool isSigned(const SliceFacts &slice)
{
    const SignatureState state = slice.signature.state;
    return state == SignatureState::certified || state == SignatureState::adHoc;
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

/// Verifies what is signed so that it would do.
void verifyGood(const QString &path, CodeFacts &facts, codesignature::VerificationOrder order)
{
    order.strictness = codesignature::Strictness::strict;
    const auto problem = verifyCode(path, order).problem;
    if (problem.isNone())
        return;
    for (SliceFacts &slice : facts.slices) {
        const bool isMeant = problem.architecture.isEmpty() || problem.architecture == slice.architecture;
        if (isMeant || (wouldDo(slice) && !holdsAlone(path, slice, order)))
            slice.signature.isInvalid = true;
    }
}

/// Verifies what is signed in another way. What is nested is told of at its own place.
void verifyOther(const QString &path, CodeFacts &facts, const codesignature::VerificationOrder &order)
{
    const auto problem = verifyCode(path, order).problem;
    if (problem.isNone() || !problem.subcomponent.isEmpty())
        return;
    for (SliceFacts &slice : facts.slices) {
        if (isSigned(slice) && !holdsAlone(path, slice, order))
            slice.signature.isInvalid = true;
    }
}

} // namespace

void verifySignatures(const QString &path, CodeFacts &facts, const TrustStore &store)
{
    codesignature::VerificationOrder order;
    order.store = store;
    if (std::any_of(facts.slices.cbegin(), facts.slices.cend(), wouldDo))
        verifyGood(path, facts, order);
    else if (std::any_of(facts.slices.cbegin(), facts.slices.cend(), isSigned))
        verifyOther(path, facts, order);
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
