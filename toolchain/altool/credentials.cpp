#include "altool/credentials.h"

#include "formats/passwords.h"
#include "support/console.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;
using toolchain::notary::ApiKey;

namespace toolchain {

namespace {

constexpr qint64 largestKeyFile = 64 * 1024;
const QString environmentPrefix = u"@env:"_s;

QString textOf(const ParsedArguments &arguments, const char *name)
{
    return QString::fromStdString(arguments.value(name));
}

Error notFound(const QString &item, const QString &why)
{
    return {
        u"Unable to use '%1': %2. The specified item could not be found in the keychain."_s.arg(item, why)};
}

Result<ApiKey> keyIn(const QByteArray &bytes, const QString &item)
{
    auto key = notary::apiKeyFromItem(bytes);
    return key ? key : notFound(item, key.error());
}

Result<ApiKey> keyOfItem(const QString &item)
{
    const auto bytes = readPassword(item);
    if (!bytes)
        return Error{
            u"Unable to read the password. The specified item could not be found in the keychain."_s};
    return keyIn(*bytes, item);
}

Result<ApiKey> keyOfVariable(const QString &name)
{
    const QByteArray value = qgetenv(name.toUtf8().constData());
    if (value.isEmpty())
        return notFound(u"@env:"_s + name, u"the environment holds nothing under that name"_s);
    return keyIn(value, u"@env:"_s + name);
}

Result<ApiKey> keyOfFile(const QString &keyId, const QString &issuer)
{
    static const QRegularExpression form(uR"(\A[A-Za-z0-9]{1,40}\z)"_s);
    const QString path = QDir::homePath() + u"/.appstoreconnect/private_keys/AuthKey_%1.p8"_s.arg(keyId);
    QFile file(path);
    if (!form.match(keyId).hasMatch() || !file.open(QIODevice::ReadOnly))
        return notFound(path, u"it cannot be read"_s);
    ApiKey key{keyId, issuer, file.read(largestKeyFile), {}, {}};
    if (!notary::privateKeyOf(key))
        return notFound(path, u"it is no key on the curve P-256"_s);
    return key;
}

Result<ApiKey> keyFrom(const ParsedArguments &arguments)
{
    const QString keychainPrefix = u"@keychain:"_s;
    const QString password = textOf(arguments, "-p");
    if (arguments.has("--apiKey"))
        return keyOfFile(textOf(arguments, "--apiKey"), textOf(arguments, "--apiIssuer"));
    if (password.startsWith(keychainPrefix))
        return keyOfItem(password.mid(keychainPrefix.size()));
    if (password.startsWith(environmentPrefix))
        return keyOfVariable(password.mid(environmentPrefix.size()));
    return notFound(
        u"-p"_s,
        u"a secret on a command line can be read by everybody; keep an API key in a password item "
        "and name it by @keychain:ITEM"_s);
}

} // namespace

void warnOfEnvironment(const ParsedArguments &arguments)
{
    const QString password = textOf(arguments, "-p");
    const bool isTaken = !arguments.has("--apiKey") && password.startsWith(environmentPrefix)
        && qEnvironmentVariableIsSet(password.mid(environmentPrefix.size()).toUtf8().constData());
    if (isTaken)
        printError("altool: warning: an environment can be read by others; a password item cannot\n");
}

Result<ApiKey> readCredentials(const ParsedArguments &arguments)
{
    auto key = keyFrom(arguments);
    if (!key)
        return key;
    const QString account = textOf(arguments, "-u");
    if (!key->appleId.isEmpty() && arguments.has("-u")
        && key->appleId.compare(account, Qt::CaseInsensitive) != 0)
        return Error{u"The API key belongs to another Apple ID than '%1'."_s.arg(account)};
    const QString team = textOf(arguments, "--asc-provider");
    if (!key->team.isEmpty() && !team.isEmpty() && key->team != team)
        return Error{u"The API key belongs to another team than '%1'."_s.arg(team)};
    return key;
}

} // namespace toolchain
