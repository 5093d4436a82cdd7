// What the service says of each file of code.

#include "examine/judgement.h"

#include "examine/rules.h"
#include "formats/review/judge.h"
#include "formats/review/verifying.h"

using namespace Qt::StringLiterals;
using toolchain::review::CodeFacts;
using toolchain::review::Objection;
using toolchain::review::SignatureState;
using toolchain::review::SliceFacts;

namespace examine {

namespace {

QString ruleFor(Objection objection, const QString &unsignedRule)
{
    switch (objection) {
    case Objection::Damaged:
        return rule::damagedCode;
    case Objection::NotSigned:
        return unsignedRule;
    case Objection::Invalid:
        return rule::signatureInvalid;
    case Objection::NotDeveloperId:
        return rule::notDeveloperId;
    case Objection::NoTimestamp:
        return rule::noTimestamp;
    case Objection::NoRuntime:
        return rule::noHardenedRuntime;
    case Objection::GetTaskAllow:
        return rule::getTaskAllow;
    case Objection::OldSdk:
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
            find(rule::damagedCode, Severity::error, entry.path, message(Objection::Damaged));
            continue;
        }
        for (const SliceFacts &slice : entry.facts.slices) {
            if (!slice.runsOnMacs)
                find(rule::unknownArchitecture, Severity::warning, entry.path,
                     u"No Mac runs this architecture."_s, slice.architecture);
        }
        if (entry.order)
            judgeSigned(entry);
        else
            judgeKept(entry);
    }
}

void Judgement::judgeSigned(const CodeEntry &entry)
{
    for (const SliceFacts &slice : entry.facts.slices) {
        for (const Objection objection : objectionsOnceSigned(slice))
            find(ruleFor(objection, {}), Severity::error, entry.path, message(objection), slice.architecture);
    }
}

void Judgement::judgeKept(const CodeEntry &entry)
{
    if (absolute(entry.path) == m_prediction.droppedMember)
        return; // told with the reason why the item takes its place
    const QString unsignedRule = ruleForUnsigned(entry);
    const bool isOneFinding = unsignedRule == rule::codeInArchive;
    CodeFacts facts = entry.facts;
    const bool isOnDisk = !m_collected.isInArchive(entry.path) && m_examination.kind != ItemKind::package
        && m_examination.kind != ItemKind::diskImage;
    if (isOnDisk)
        toolchain::review::verifySignatures(absolute(entry.path), facts,
                                            toolchain::TrustStore::ofThisMachine());
    for (const SliceFacts &slice : std::as_const(facts.slices)) {
        judgeKeptSlice(entry, slice, unsignedRule);
        if (isOneFinding && hasErrorAt(entry.path))
            return;
    }
}

void Judgement::judgeKeptSlice(const CodeEntry &entry, const SliceFacts &slice, const QString &unsignedRule)
{
    const QList<Objection> objections = objectionsTo(slice);
    if (objections.isEmpty())
        return;
    const SignatureState state = slice.signature.state;
    if (state == SignatureState::Linker) {
        // A linker's signature is no better than none, though the service has other words for it.
        find(unsignedRule, Severity::error, entry.path, message(Objection::NotDeveloperId),
             slice.architecture);
        return;
    }
    if (unsignedRule == rule::skippedCode && state == SignatureState::AdHoc)
        find(unsignedRule, Severity::error, entry.path, message(objections.first()), slice.architecture);
    for (const Objection objection : objections)
        find(ruleFor(objection, unsignedRule), Severity::error, entry.path, message(objection),
             slice.architecture);
}

QString Judgement::ruleForUnsigned(const CodeEntry &entry) const
{
    if (m_collected.isInArchive(entry.path))
        return rule::codeInArchive;
    return isSkipped(entry) ? rule::skippedCode : rule::unsignedCode;
}

} // namespace examine
