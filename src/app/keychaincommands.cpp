#include "app/keychaincommands.h"

#include <QCryptographicHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sealwright::keychain {

namespace {

const QString security = u"/usr/bin/security"_s;
const QString sealwrightKeychain = u"/usr/bin/sealwright-keychain"_s;

/// A secret as a program reads it: one line.
QByteArray line(const QString &secret)
{
    return secret.toUtf8() + '\n';
}

} // namespace

Command listIdentities()
{
    return {security, {u"find-identity"_s, u"-v"_s}};
}

Command makeIdentity(const QString &name, IdentityKind kind)
{
    const QString word = kind == IdentityKind::application ? u"application"_s : u"installer"_s;
    return {sealwrightKeychain, {u"make-identity"_s, u"--name"_s, name, u"--kind"_s, word}};
}

Command importFile(const QString &path, const QString &passphrase)
{
    return {security, {u"import"_s, path, u"--passphrase-file"_s, u"-"_s}, line(passphrase)};
}

Command deleteIdentity(const QString &sha1)
{
    return {security, {u"delete-identity"_s, u"-Z"_s, sha1}};
}

Command addApiKey(const ApiKey &key)
{
    QStringList arguments{u"add-api-key"_s, key.item};
    if (!key.keyId.isEmpty())
        arguments += {u"--key-id"_s, key.keyId};
    if (!key.issuer.isEmpty())
        arguments += {u"--issuer"_s, key.issuer};
    return {sealwrightKeychain, arguments + QStringList{key.file}};
}

Command makeApiKey(const QString &item)
{
    return {sealwrightKeychain, {u"make-api-key"_s, item}};
}

Command addPassword(const QString &item, const QString &account, const QString &password)
{
    QStringList arguments{u"add-generic-password"_s, u"-s"_s, item, u"-U"_s};
    if (!account.isEmpty())
        arguments += {u"-a"_s, account};
    return {security, arguments, line(password)};
}

Command findPassword(const QString &item)
{
    return {security, {u"find-generic-password"_s, u"-s"_s, item}};
}

Command deletePassword(const QString &item)
{
    return {security, {u"delete-generic-password"_s, u"-s"_s, item}};
}

Command status()
{
    return {sealwrightKeychain, {u"status"_s}};
}

Command lock()
{
    return {sealwrightKeychain, {u"lock"_s}};
}

Command unlock(const QString &passphrase)
{
    return {sealwrightKeychain, {u"unlock"_s, u"--passphrase-file"_s, u"-"_s}, line(passphrase)};
}

Command setPassphrase(const QString &passphrase)
{
    return {sealwrightKeychain, {u"set-passphrase"_s, u"--passphrase-file"_s, u"-"_s}, line(passphrase)};
}

Command useStore(Protection protection)
{
    const QString store = protection == Protection::secretService ? u"secret-service"_s : u"file"_s;
    return {sealwrightKeychain, {u"use-store"_s, store}};
}

std::optional<State> stateIn(const QString &status)
{
    const bool isLocked = status.contains(u"state: locked"_s);
    if (status.contains(u"store: secret-service"_s))
        return State{Protection::secretService, isLocked};
    if (status.contains(u"store: file, under a passphrase"_s))
        return State{Protection::passphrase, isLocked};
    if (status.contains(u"store: file"_s))
        return State{Protection::folderAlone, isLocked};
    return std::nullopt;
}

Command useNotary(const QString &service)
{
    return {sealwrightKeychain, {u"use-notary"_s, service}};
}

Command presentNotary()
{
    return {sealwrightKeychain, {u"use-notary"_s}};
}

QList<Identity> identitiesIn(const QString &listing)
{
    static const QRegularExpression form(uR"re(^\s*\d+\) ([0-9A-Fa-f]+) "(.*)"\s*$)re"_s,
                                         QRegularExpression::MultilineOption);
    QList<Identity> identities;
    for (auto match = form.globalMatch(listing); match.hasNext();) {
        const auto found = match.next();
        identities.append({found.captured(1), found.captured(2)});
    }
    return identities;
}

QString reasonIn(const QString &standardError)
{
    static const QRegularExpression programName(u"^(security|sealwright-keychain): "_s,
                                                QRegularExpression::MultilineOption);
    QString text = standardError.section(u"\nUsage:"_s, 0, 0);
    return text.remove(programName).trimmed();
}

QString withTeam(const QString &name)
{
    static const QRegularExpression team(uR"(\([A-Z0-9]{10}\)$)"_s);
    const QString plain = name.simplified();
    if (plain.contains(team))
        return plain;
    const QByteArray digest = QCryptographicHash::hash(plain.toUtf8(), QCryptographicHash::Sha256).toHex();
    return u"%1 (%2)"_s.arg(plain, QString::fromLatin1(digest.first(10).toUpper()));
}

} // namespace sealwright::keychain
