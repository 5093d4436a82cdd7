// What the service says of each file of code.

#include "examine/judgement.h"

#include "examine/rules.h"
#include "formats/review/judge.h"
#include "formats/review/verifying.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

using toolchain::review::CodeFacts;
using toolchain::review::Objection;
using toolchain::review::SignatureState;
using toolchain::review::SliceFacts;

namespace examine {

namespace {

QString ruleFor(Objection objection, const QString &unsignedRule)
{
    switch (objection) {
    case Objection::damaged:
        return rule::damagedCode;
    case Objection::notSigned:
        return unsignedRule;
    case Objection::invalid:
        return rule::signatureInvalid;
    case Objection::notDeveloperId:
        return rule::notDeveloperId;
    case Objection::noTimestamp:
        return rule::noTimestamp;
    case Objection::noRuntime:
        return rule::noHardenedRuntime;
    case Objection::getTaskAllow:
        return rule::getTaskAllow;
    case Objection::oldSdk:
        return rule::oldSdk;
    }
    return {};
}

} // namespace

void Judgement::judgeCode()
{
    const QList<CodeEntry> entries = m_examination.code; // findings are added meanwhile, entries are not
    for (const CodeEntry &entry : entries) {
        if (!entry.facts.damage.isEmpty()) {
            find(rule::damagedCode, Severity::error, entry.path, message(Objection::damaged));
            continue;
        }
        for (const SliceFacts &slice : entry.facts.slices) {
            if (!slice.runsOnMacs)
                find(rule::unknownArchitecture, Severity::warning, entry.path,
                     u"No Mac runs this architecture."_s, slice.architecture);
        }
        if (entry.order || isSignedWithParent(entry.path))
            judgeSigned(entry);
        else
            judgeKept(entry);
    }
}

void Judgement::judgeSigned(const CodeEntry &entry)
{
    if (!m_choices.replacesSignatures && entry.order)
        judgeOldSignature(entry);
    for (const SliceFacts &slice : entry.facts.slices) {
        for (const Objection objection : objectionsOnceSigned(slice))
            find(ruleFor(objection, {}), Severity::error, entry.path, message(objection), slice.architecture);
    }
}

/// Without --force codesign leaves what is signed alone, and the run ends there.
void Judgement::judgeOldSignature(const CodeEntry &entry)
{
    const auto isSigned = [](const auto &signature) {
        return signature.state != SignatureState::none && signature.state != SignatureState::linker;
    };
    const auto &slices = entry.facts.slices;
    const bool isSignedAlready =
        std::any_of(slices.cbegin(), slices.cend(),
                    [&](const SliceFacts &slice) { return isSigned(slice.signature); })
        || (entry.ownSignature && isSigned(*entry.ownSignature));
    if (isSignedAlready)
        find(rule::unsignedCode, Severity::error, entry.path, u"is already signed"_s).advice =
            u"Let the settings replace signatures that are there, or take the old one off with codesign --remove-signature."_s;
}

void Judgement::judgeKept(const CodeEntry &entry)
{
    if (absolute(entry.path) == m_prediction.droppedMember)
        return; // told with the reason why the item takes its place
    const QString unsignedRule = ruleForUnsigned(entry);
    CodeFacts facts = entry.facts;
    const bool isOnDisk = !m_collected.isInArchive(entry.path) && m_examination.kind != ItemKind::package
        && m_examination.kind != ItemKind::diskImage;
    if (isOnDisk)
        toolchain::review::verifySignatures(absolute(entry.path), facts,
                                            toolchain::TrustStore::ofThisMachine());
    for (const SliceFacts &slice : std::as_const(facts.slices))
        judgeKeptSlice(entry, slice, unsignedRule);
    if (isOnDisk)
        judgeTeam(entry);
}

void Judgement::judgeKeptSlice(const CodeEntry &entry, const SliceFacts &slice, const QString &unsignedRule)
{
    const QList<Objection> objections = objectionsTo(slice);
    if (objections.isEmpty())
        return;
    const SignatureState state = slice.signature.state;
    if (state == SignatureState::linker) // no better than none, though the service has other words for it
        return objectToUnsigned(entry, slice, Objection::notDeveloperId, unsignedRule);
    const bool wouldDo = objections == QList{Objection::oldSdk};
    if (unsignedRule == rule::skippedCode && state != SignatureState::none && !wouldDo)
        objectToUnsigned(entry, slice, objections.first(), unsignedRule);
    for (const Objection objection : objections) {
        if (objection == Objection::notSigned)
            objectToUnsigned(entry, slice, objection, unsignedRule);
        else
            find(ruleFor(objection, unsignedRule), Severity::error, entry.path, message(objection),
                 slice.architecture);
    }
}

/// A file in an archive is told of once, whatever it is made for.
void Judgement::objectToUnsigned(const CodeEntry &entry, const SliceFacts &slice, Objection objection,
                                 const QString &ruleName)
{
    const bool isOneFinding = ruleName == rule::codeInArchive;
    if (isOneFinding && hasErrorAt(entry.path))
        return;
    const bool isForAll = isOneFinding && entry.facts.slices.size() > 1;
    Finding &finding = find(ruleName, Severity::error, entry.path, message(objection),
                            isForAll ? QString() : slice.architecture);
    if (ruleName != rule::unsignedCode)
        return;
    if (const QString better = advice(reasonFor(entry)); !better.isEmpty())
        finding.advice = better;
}

/// The hardened runtime lets an app load only what its own team or Apple has signed.
void Judgement::judgeTeam(const CodeEntry &entry)
{
    const bool mayLoadAll =
        m_choices.entitlements.value(u"com.apple.security.cs.disable-library-validation"_s).toBool();
    if (m_choices.team.isEmpty() || mayLoadAll)
        return;
    for (const SliceFacts &slice : entry.facts.slices) {
        const auto &signature = slice.signature;
        const bool isOfOthers = signature.state == SignatureState::certified && !signature.team.isEmpty()
            && signature.team != m_choices.team;
        if (isOfOthers && slice.mustBeSigned() && !slice.isExecutable())
            return void(find(rule::libraryValidation, Severity::warning, entry.path,
                             u"The library is signed by the team %1 and what loads it by %2."_s.arg(
                                 signature.team, m_choices.team)));
    }
}

QString Judgement::ruleForUnsigned(const CodeEntry &entry) const
{
    if (m_collected.isInArchive(entry.path))
        return rule::codeInArchive;
    return isSkipped(entry) ? rule::skippedCode : rule::unsignedCode;
}

} // namespace examine

} // namespace sealwright
