#include "formats/identities.h"

#include <QCryptographicHash>
#include <QRegularExpression>
#include <QUrl>

#include <openssl/x509v3.h>

#include <algorithm>
#include <iterator>

#include "formats/authority.h"
#include "formats/certificatefile.h"
#include "formats/keychaincontents.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

/// Apple's extended key usage for a certificate that signs installer packages.
constexpr const char *packageSigningUsage = "1.2.840.113635.100.4.13";
/// X.520, ub-organization-name.
constexpr qsizetype longestOrganisation = 64;

bool isValidNow(X509 *certificate)
{
    return X509_cmp_current_time(X509_get0_notBefore(certificate)) < 0
        && X509_cmp_current_time(X509_get0_notAfter(certificate)) > 0;
}

Identity identityFrom(X509 *certificate)
{
    return {subjectEntryOf(certificate, NID_commonName),
            fingerprintOf(certificate),
            isValidNow(certificate),
            (X509_get_extended_key_usage(certificate) & XKU_CODE_SIGN) != 0,
            hasUsage(certificate, packageSigningUsage),
            derOf(certificate),
            {}};
}

/// Code may be signed with any key, even with one whose certificate says nothing of code.
bool isFor(const Identity &identity, IdentityKind kind)
{
    return identity.canSignPackages == (kind == IdentityKind::installer);
}

bool isMeant(const Identity &identity, const QString &wanted)
{
    if (wanted.isEmpty())
        return false;
    return identity.sha1.compare(wanted, Qt::CaseInsensitive) == 0 || identity.commonName.contains(wanted);
}

/// The members that a test is true of, or all where it is true of none.
template <typename Test>
QList<Identity> preferred(const QList<Identity> &identities, const Test &test)
{
    QList<Identity> better;
    std::copy_if(identities.begin(), identities.end(), std::back_inserter(better), test);
    return better.isEmpty() ? identities : better;
}

QString namesOf(const QList<Identity> &identities)
{
    QStringList names;
    for (const Identity &identity : identities)
        names.append(u'"' + identity.commonName + u'"');
    return names.join(u" and "_s);
}

struct Holder {
    QString organisation;
    QString team;
};

/// "Example Corp (A1B2C3D4E5)". A name without a team gets one of its own, of ten letters and digits as
/// Apple's have.
Holder holderFrom(const QString &name)
{
    static const QRegularExpression form(u"^(.*?)\\s*\\(([^()]+)\\)$"_s);
    const auto match = form.match(name);
    if (match.hasMatch())
        return {match.captured(1).left(longestOrganisation), match.captured(2)};
    const QByteArray digest = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256);
    return {name.left(longestOrganisation), QString::fromLatin1(digest.toHex().left(10).toUpper())};
}

} // namespace

IdentityList readIdentities(const QString &folder)
{
    const KeychainContents contents = readKeychain(folder);
    IdentityList list{{}, contents.warnings};
    const TrustStore store = contents.entries.empty() ? TrustStore() : TrustStore::ofThisMachine();
    for (const auto &entry : contents.entries) {
        if (!contents.hasKeyOf(entry.certificate.get()))
            continue;
        Identity identity = identityFrom(entry.certificate.get());
        identity.trust = trustOf(identity.certificate, contents.certificates(), TrustPurpose::any, {}, store);
        list.identities.append(identity);
    }
    return list;
}

bool satisfiesCodeSigningPolicy(const Identity &identity)
{
    const Certificate above = certificateFrom(identity.trust.chain.value(1));
    const bool isDeveloperId = above && hasExtension(above.get(), "1.2.840.113635.100.6.2.6");
    return identity.canSignCode && (!isDeveloperId || isDeveloperIdForCode(identity.trust.chain));
}

Result<Identity> chooseIdentity(const QString &folder, const QString &wanted, IdentityKind kind)
{
    return chooseIdentity(readKeychain(folder), wanted, kind);
}

Result<Identity> chooseIdentity(const KeychainContents &contents, const QString &wanted, IdentityKind kind)
{
    QList<Identity> matches;
    for (const auto &entry : contents.entries) {
        const Identity identity = identityFrom(entry.certificate.get());
        if (isMeant(identity, wanted) && isFor(identity, kind) && contents.hasKeyOf(entry.certificate.get()))
            matches.append(identity);
    }
    if (kind == IdentityKind::application)
        matches = preferred(matches, [](const Identity &identity) { return identity.canSignCode; });
    matches = preferred(matches, [](const Identity &identity) { return identity.isValidNow; });
    matches = preferred(matches, [&](const Identity &identity) { return identity.commonName == wanted; });
    if (matches.isEmpty())
        return Error{u"no identity found"_s};
    if (matches.size() > 1)
        return Error{u"ambiguous (matches %1 in %2)"_s.arg(namesOf(matches), contents.folder)};
    matches.first().trust = trustOf(matches.first().certificate, contents.certificates(), TrustPurpose::any,
                                    {}, TrustStore::ofThisMachine());
    return matches.first();
}

QString identityCommonName(const QString &name, IdentityKind kind)
{
    return (kind == IdentityKind::application ? u"Developer ID Application: "_s
                                              : u"Developer ID Installer: "_s)
        + name;
}

Result<QString> makeIdentity(const QString &folder, const QString &name, IdentityKind kind)
{
    const QString commonName = identityCommonName(name, kind);
    const Holder holder = holderFrom(name);
    const LeafPurpose purpose =
        kind == IdentityKind::application ? LeafPurpose::application : LeafPurpose::installer;
    const auto issued =
        Authority(folder).issueDeveloper(purpose, commonName, holder.team, holder.organisation);
    if (!issued)
        return issued.failure();
    const QString fileName = QString::fromLatin1(QUrl::toPercentEncoding(commonName, " (),:")) + u".pem"_s;
    const QString path = folder + u'/' + fileName;
    const platform::Outcome written = writeCertificateFile(path, {issued->chain.first()});
    return written ? Result<QString>(path) : written.failure();
}

} // namespace toolchain
