#include "security/commands.h"

#include <QFile>

#include "formats/identities.h"
#include "formats/keychain/keychainchanges.h"
#include "formats/keychain/passphrase.h"
#include "formats/statefolder.h"
#include "support/console.h"

using namespace Qt::StringLiterals;

namespace toolchain::security {

namespace {

enum class Policy { basic, codeSigning };

/// What the real program prints behind an identity that is not good.
QString markOf(const Identity &identity)
{
    switch (identity.trust.problem) {
    case TrustProblem::none:
        return {};
    case TrustProblem::expired:
        return u" (CSSMERR_TP_CERT_EXPIRED)"_s;
    case TrustProblem::notYetValid:
        return u" (CSSMERR_TP_CERT_NOT_VALID_YET)"_s;
    default:
        return u" (CSSMERR_TP_NOT_TRUSTED)"_s;
    }
}

QList<Identity> matching(const QList<Identity> &identities, Policy policy)
{
    QList<Identity> matches;
    for (const Identity &identity : identities) {
        if (policy == Policy::basic || satisfiesCodeSigningPolicy(identity))
            matches.append(identity);
    }
    return matches;
}

QList<Identity> onlyGood(const QList<Identity> &identities)
{
    QList<Identity> good;
    for (const Identity &identity : identities) {
        if (identity.trust.isGood())
            good.append(identity);
    }
    return good;
}

QString listing(const QList<Identity> &identities, const QString &kind)
{
    QString text;
    for (qsizetype index = 0; index < identities.size(); ++index) {
        const Identity &identity = identities[index];
        text += u"%1) %2 \"%3\"%4\n"_s.arg(index + 1, 3)
                    .arg(identity.sha1, identity.commonName, markOf(identity));
    }
    return text + u"     %1 %2identities found\n"_s.arg(identities.size()).arg(kind);
}

QString wholeListing(const QList<Identity> &identities, Policy policy)
{
    const QString name = policy == Policy::codeSigning ? u"Code Signing"_s : u"X.509 Basic"_s;
    return u"Policy: "_s + name + u"\n  Matching identities\n"_s + listing(identities, {})
        + u"\n  Valid identities only\n"_s + listing(onlyGood(identities), u"valid "_s);
}

QString plural(qsizetype count, const QString &one, const QString &many)
{
    return u"%1 %2 imported.\n"_s.arg(count).arg(count == 1 ? one : many);
}

QString reportOf(const ImportCount &count)
{
    QString report;
    if (count.identities > 0)
        report += plural(count.identities, u"identity"_s, u"identities"_s);
    if (count.certificates > 0)
        report += plural(count.certificates, u"certificate"_s, u"certificates"_s);
    if (count.keys > 0)
        report += plural(count.keys, u"key"_s, u"keys"_s);
    return report;
}

int importFrom(const QString &name, const QByteArray &bytes, const QString &passphraseFile)
{
    const auto items = readImport(bytes, [&passphraseFile, &name] {
        return passphraseFrom(passphraseFile, u"Passphrase of %1:"_s.arg(name));
    });
    if (!items)
        return fail(name + u": "_s + items.error());
    if (items->certificates.isEmpty() && items->keys.isEmpty())
        return fail(name + u": holds no certificate and no key"_s);
    const auto count = addToKeychain(keychainFolder(), *items);
    if (!count)
        return fail(name + u": "_s + count.error());
    if (count->isNothing())
        return fail(u"SecKeychainItemImport: The specified item already exists in the keychain."_s);
    print(reportOf(*count).toStdString());
    return 0;
}

/// The SHA-1 of the one identity that is meant; fails if it is none or several.
platform::Result<QString> sha1Of(const QString &sha1, const QString &name)
{
    QStringList found;
    for (const Identity &identity : readIdentities(keychainFolder()).identities) {
        const bool isMeant = sha1.isEmpty() ? identity.commonName.contains(name)
                                            : identity.sha1.compare(sha1, Qt::CaseInsensitive) == 0;
        if (isMeant)
            found.append(identity.sha1);
    }
    if (found.isEmpty())
        return platform::Error{u"The specified item could not be found in the keychain."_s};
    if (found.size() > 1)
        return platform::Error{u"\"%1\" is ambiguous, matches more than one certificate"_s.arg(name)};
    return found.first();
}

} // namespace

int findIdentity(const ParsedArguments &arguments)
{
    const std::string name = arguments.value("-p");
    if (arguments.has("-p") && name != "codesigning" && name != "basic")
        return refuse("no policy '" + name + "' is built in", notBuiltStatus);
    const Policy policy = name == "codesigning" ? Policy::codeSigning : Policy::basic;
    const IdentityList list = readIdentities(keychainFolder());
    for (const QString &warning : list.warnings)
        printError("security: warning: " + warning.toStdString() + "\n");
    const auto identities = matching(list.identities, policy);
    const QString text =
        arguments.has("-v") ? listing(onlyGood(identities), u"valid "_s) : wholeListing(identities, policy);
    print(text.toStdString());
    return 0;
}

int import(const ParsedArguments &arguments)
{
    const QString name = QString::fromStdString(arguments.operands.front());
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return fail(name + u": "_s + file.errorString());
    constexpr qint64 mostBytes = (16 << 20) + 1;
    return importFrom(name, file.read(mostBytes),
                      QString::fromStdString(arguments.value("--passphrase-file")));
}

int deleteIdentity(const ParsedArguments &arguments)
{
    const QString sha1 = QString::fromStdString(arguments.value("-Z"));
    const QString name = QString::fromStdString(arguments.value("-c"));
    if (sha1.isEmpty() == name.isEmpty())
        return refuse("delete-identity: needs either -Z or -c", usageStatus);
    const auto found = sha1Of(sha1, name);
    if (!found)
        return fail(found.error(), found.error().startsWith(u'"') ? 1 : notFoundStatus);
    const auto removed = removeIdentity(keychainFolder(), *found);
    return removed ? 0 : fail(removed.error());
}

} // namespace toolchain::security
