#include "spctl/assessment.h"

#include <openssl/obj_mac.h>

#include "formats/codesignature/verification.h"
#include "formats/cryptography.h"
#include "formats/package/packagejudgement.h"
#include "formats/ticket/stapling.h"
#include "spctl/approval.h"

using namespace Qt::StringLiterals;

namespace toolchain::spctl {

namespace {

using codesignature::Verification;
using ticket::TicketEntry;
using ticket::TicketJudgement;

const QString noUsableSignature = u"no usable signature"_s;

/// The signer of an item, and when the signature was made as far as a time stamp proves it.
struct Signer {
    Trust trust;
    std::optional<QDateTime> timestamp;
};

QString originOf(const Signer &signer)
{
    const Certificate leaf = certificateFrom(signer.trust.chain.value(0));
    return leaf ? subjectEntryOf(leaf.get(), NID_commonName) : QString();
}

/// Apple asks for a ticket since June 2019 ("Notarizing macOS software before distribution").
bool isOlderThanTickets(const Signer &signer)
{
    static const QDateTime begin(QDate(2019, 6, 1), QTime(0, 0), Qt::UTC);
    return signer.timestamp && *signer.timestamp < begin;
}

/// Nothing that rests on this machine's authority reads as Apple's.
QString named(const QString &rule, const Signer &signer, Anchor ticketAnchor)
{
    const bool isApples = signer.trust.anchor == Anchor::apple && ticketAnchor == Anchor::apple;
    return isApples ? rule : rule + u" of this machine"_s;
}

Assessment accepted(const QString &source, const QString &origin)
{
    return {.isAccepted = true, .source = source, .origin = origin, .note = {}};
}

Assessment rejected(const QString &source, const QString &origin = {})
{
    return {.isAccepted = false, .source = source, .origin = origin, .note = {}};
}

/// For a signature that holds and a certificate that is right: what is left is the ticket.
Assessment byTicket(const Signer &signer, const TicketJudgement &approval)
{
    const QString origin = originOf(signer);
    if (approval.isGood())
        return accepted(named(u"Notarized Developer ID"_s, signer, approval.anchor), origin);
    if (isOlderThanTickets(signer))
        return accepted(named(u"Developer ID"_s, signer, Anchor::apple), origin);
    return rejected(named(u"Unnotarized Developer ID"_s, signer, Anchor::apple), origin);
}

quint8 hashTypeOf(const codesignature::SignedPart &part)
{
    return static_cast<quint8>(part.best().fields().hashType);
}

QList<TicketEntry> entriesOf(const codesignature::SignedCode &code)
{
    QList<TicketEntry> entries;
    for (const auto &part : code.parts) {
        if (part.isSigned())
            entries.append({hashTypeOf(part), part.cdHash()});
    }
    return entries;
}

/// A single file of code can have no ticket attached, and is known to the service all the same.
TicketJudgement approvalOfCode(const codesignature::SignedCode &code)
{
    const auto target = ticket::StapleTarget::open(code.path);
    return target ? approvalOf((**target).entries(), (**target).ticket()) : approvalOf(entriesOf(code), {});
}

/// What speaks against the signer of code; empty if nothing does.
QString objectionTo(const CmsJudgement &signer)
{
    if (!signer.problem.isEmpty())
        return signer.problem;
    if (!signer.timestampProblem.isEmpty())
        return signer.timestampProblem;
    if (!signer.trust.isGood())
        return signer.trust.text();
    return isDeveloperIdForCode(signer.trust.chain) ? QString() : u"no Developer ID"_s;
}

/// What Gatekeeper itself does not ask for, and the notary does, so that no ticket can come.
QString noteOn(const codesignature::SignedCode &code)
{
    for (qsizetype index = 0; code.image && index < code.image->slices.size(); ++index) {
        const codesignature::SignedPart &part = code.parts[index];
        const bool isProgram = code.image->slices[index].fileType == codesignature::MachOFileType::executable;
        if (isProgram && part.isSigned() && !(part.best().fields().flags & codesignature::codeflag::runtime))
            return u"the hardened runtime is off, without which nothing is notarized"_s;
    }
    return {};
}

Assessment judged(const Verification &verification)
{
    const bool isSigned = verification.code && verification.code->isSigned();
    if (!isSigned)
        return rejected(noUsableSignature);
    const QString origin = verification.signer ? originOf({verification.signer->trust, {}}) : QString();
    if (!verification.problem.isNone())
        return rejected(verification.problem.text, origin);
    if (!verification.signer)
        return rejected(noUsableSignature);
    const QString objection = objectionTo(*verification.signer);
    if (!objection.isEmpty())
        return rejected(objection, origin);
    Assessment assessment = byTicket({verification.signer->trust, verification.signer->timestamp},
                                     approvalOfCode(*verification.code));
    if (!assessment.isAccepted)
        assessment.note = noteOn(*verification.code);
    return assessment;
}

Assessment assessCode(const QString &path, Use use)
{
    const auto code = codesignature::readSignedCode(path);
    const bool isImage = code && code->kind == codesignature::CodeKind::diskImage;
    if (isImage && use != Use::open)
        return rejected(noUsableSignature);
    return judged(codesignature::verifyCode(path, {}));
}

Assessment assessPackage(const QString &path)
{
    const auto archive = xar::Archive::open(path);
    if (!archive)
        return rejected(noUsableSignature);
    const auto judgement = package::judgePackage(*archive);
    const Signer signer{judgement.trust, judgement.timestamp};
    if (judgement.verdict == package::PackageJudgement::Verdict::notSigned)
        return rejected(noUsableSignature);
    if (!judgement.isGood())
        return rejected(judgement.problem, originOf(signer));
    if (judgement.ticket.isGood())
        return byTicket(signer, judgement.ticket);
    const auto target = ticket::StapleTarget::open(path);
    return byTicket(signer, target ? approvalOf((**target).entries(), {}) : TicketJudgement());
}

bool isDiskImage(const QString &path)
{
    const auto code = codesignature::readSignedCode(path);
    return code && code->kind == codesignature::CodeKind::diskImage;
}

} // namespace

Assessment assess(const QString &path, Use use, Context context)
{
    if (use == Use::install)
        return assessPackage(path);
    if (use == Use::open && context == Context::none && isDiskImage(path))
        return rejected(u"Insufficient Context"_s);
    return assessCode(path, use);
}

} // namespace toolchain::spctl
