#include "formats/codesignature/certificatefacts.h"
#include "formats/codesignature/requirement.h"
#include "formats/codesignature/requirementcode.h"

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

const QString developerIdAuthority = u"1.2.840.113635.100.6.2.6"_s;
const QString developerIdApplication = u"1.2.840.113635.100.6.1.13"_s;
const QString developerAuthority = u"1.2.840.113635.100.6.2.1"_s;
constexpr quint32 rootSlot = quint32(-1);

QByteArray both(const QByteArray &left, const QByteArray &right)
{
    return RequirementWriter().operation(Operation::conjunction).expression(left).expression(right).bytes();
}

QByteArray extensionExists(quint32 certificate, const QString &oid)
{
    return RequirementWriter()
        .operation(Operation::certificateGeneric)
        .number(certificate)
        .data(oidBody(oid))
        .match(Match::exists)
        .bytes();
}

QByteArray leafHas(const QByteArray &field, const QString &value)
{
    return RequirementWriter()
        .operation(Operation::certificateField)
        .number(0)
        .data(field)
        .match(Match::equal)
        .data(value.toUtf8())
        .bytes();
}

QByteArray anchoredBy(quint32 certificate, const CertificateFacts &facts)
{
    return RequirementWriter()
        .operation(Operation::anchorHash)
        .number(certificate)
        .data(facts.sha1())
        .bytes();
}

QByteArray appleGeneric()
{
    return RequirementWriter().operation(Operation::appleGenericAnchor).bytes();
}

QList<CertificateFacts> factsOf(const QList<QByteArray> &chain)
{
    QList<CertificateFacts> facts;
    for (const QByteArray &certificate : chain)
        facts.append(CertificateFacts(certificate));
    return facts;
}

/// Where the chain begins to belong to somebody else: the last certificate from the leaf upwards that has the
/// leaf's organisation.
QByteArray ownersAnchor(const QList<CertificateFacts> &chain)
{
    const auto organisation = chain.first().subject(u"O"_s);
    qsizetype last = 0;
    while (organisation && last + 1 < chain.size() && chain[last + 1].subject(u"O"_s) == organisation)
        ++last;
    const bool isRoot = organisation && last == chain.size() - 1;
    return anchoredBy(isRoot ? rootSlot : quint32(last), chain[last]);
}

QByteArray developerIdForm(const QByteArray &anchor, const CertificateFacts &leaf)
{
    const QString team = leaf.subject(u"OU"_s).value_or(QString());
    return both(anchor,
                both(extensionExists(1, developerIdAuthority),
                     both(extensionExists(0, developerIdApplication), leafHas("subject.OU", team))));
}

QByteArray signersPart(const SignerFacts &signer)
{
    const QList<CertificateFacts> chain = factsOf(signer.chain);
    const bool isDeveloperId = chain.size() == 3 && chain[1].extension(developerIdAuthority);
    const bool isDevelopment = chain.size() == 3 && !isDeveloperId && chain[1].extension(developerAuthority);
    if (isDeveloperId && signer.endsInApplesRoot)
        return developerIdForm(appleGeneric(), chain.first());
    if (isDeveloperId && signer.endsInOwnAuthority)
        return developerIdForm(anchoredBy(rootSlot, chain.last()), chain.first());
    if (isDevelopment && signer.endsInApplesRoot)
        return both(
            appleGeneric(),
            both(leafHas("subject.CN", chain.first().commonName()), extensionExists(1, developerAuthority)));
    if (signer.endsInApplesRoot)
        return RequirementWriter().operation(Operation::appleAnchor).bytes();
    return ownersAnchor(chain);
}

} // namespace

QByteArray designatedRequirementFor(const QString &identifier, const SignerFacts &signer)
{
    const QByteArray name =
        RequirementWriter().operation(Operation::identifier).data(identifier.toUtf8()).bytes();
    return requirementBlob(both(name, signersPart(signer)));
}

} // namespace toolchain::codesignature
