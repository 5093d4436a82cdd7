#include "keychain/notarycommands.h"
#include "keychain/commandline.h"

#include "formats/notary/apikey.h"
#include "formats/notary/serviceconfig.h"
#include "formats/passwords.h"
#include "support/console.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

using namespace Qt::StringLiterals;
using toolchain::notary::ApiKey;

namespace toolchain {

namespace {

constexpr qint64 largestKeyFile = 64 * 1024;

QString textOf(const ParsedArguments &arguments, const char *name)
{
    return QString::fromStdString(arguments.value(name));
}

int keep(const QString &item, const ApiKey &key)
{
    const auto kept = storePassword(item, notary::itemOf(key));
    if (!kept)
        return failCommand(kept.error());
    print("API key " + key.keyId.toStdString() + " kept under \"" + item.toStdString() + "\"\n");
    return 0;
}

/// Apple hands a key out under the name AuthKey_ID.p8.
QString keyIdIn(const QString &path)
{
    static const QRegularExpression form(uR"(\AAuthKey_([A-Za-z0-9]+)\.p8\z)"_s);
    return form.match(QFileInfo(path).fileName()).captured(1);
}

/// What is wrong with the identifiers of a key; empty if nothing is.
QString objectionTo(const ApiKey &key)
{
    static const QRegularExpression form(uR"(\A[A-Za-z0-9]{0,40}\z)"_s);
    if (!form.match(key.keyId).hasMatch())
        return u"a key's identifier has letters and digits only, and not '%1'"_s.arg(key.keyId);
    if (!key.issuerId.isEmpty() && QUuid::fromString(key.issuerId).isNull())
        return u"an issuer is a UUID, and not '%1'"_s.arg(key.issuerId);
    return {};
}

int addApiKey(const ParsedArguments &arguments)
{
    const QString item = QString::fromStdString(arguments.operands.at(1));
    const QString path = QString::fromStdString(arguments.operands.at(2));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failCommand(path + u": "_s + file.errorString());
    ApiKey key{textOf(arguments, "--key-id"),
               textOf(arguments, "--issuer"),
               file.read(largestKeyFile),
               textOf(arguments, "--team"),
               {}};
    if (key.keyId.isEmpty())
        key.keyId = keyIdIn(path);
    const QString wrong = objectionTo(key);
    if (!wrong.isEmpty())
        return failCommand(wrong);
    if (key.keyId.isEmpty())
        return failCommand(path
                           + u": its name is not AuthKey_ID.p8; tell the key's identifier by --key-id"_s);
    if (!notary::privateKeyOf(key))
        return failCommand(path + u": this is no private key on the curve P-256"_s);
    return keep(item, key);
}

int makeApiKey(const ParsedArguments &arguments)
{
    auto key = notary::makeLocalApiKey();
    if (!key)
        return failCommand(key.error());
    key->team = textOf(arguments, "--team");
    return keep(QString::fromStdString(arguments.operands.at(1)), *key);
}

int useNotary(const ParsedArguments &arguments)
{
    const QString choice = QString::fromStdString(arguments.operands.at(1));
    const auto chosen = notary::chooseService(choice);
    if (!chosen)
        return failCommand(chosen.error());
    const auto config = notary::readServiceConfig();
    print("notary service: "
          + (config && !config->isLocal ? notary::hostAndPort(config->api).toStdString() : "of this machine")
          + "\n");
    return 0;
}

/// The word that would choose the present service again.
QString choiceOf(const notary::ServiceConfig &config)
{
    if (config.isLocal)
        return u"local"_s;
    const bool isApples = config.api == notary::appleService().api;
    return isApples ? u"apple"_s : config.api.chopped(config.api.endsWith(u"/notary/v2"_s) ? 10 : 0);
}

int tellNotary()
{
    const auto config = notary::readServiceConfig();
    if (!config)
        return failCommand(config.error());
    print(choiceOf(*config).toStdString() + "\n");
    return 0;
}

} // namespace

std::string_view notaryUsage()
{
    return R"(       sealwright-keychain add-api-key ITEM [--key-id ID] [--issuer UUID] [--team ID] FILE.p8
       sealwright-keychain make-api-key ITEM [--team ID]
       sealwright-keychain use-notary [apple | local | URL]
)";
}

std::string_view notaryDetails()
{
    return R"(  add-api-key     keep a key from App Store Connect under the name ITEM. The identifier is that of the file's name,
                  AuthKey_ID.p8, if it is not told; without an issuer it is an individual key
  make-api-key    make a key for the notary service of this machine and keep it under the name ITEM
  use-notary      say which service altool, stapler, spctl and codesign ask: Apple's, that of this machine (as
                  without any choice), or the one at an address. Without a word: print the present choice
)";
}

std::vector<Option> notaryOptions()
{
    return {{{"--key-id"}, OptionValue::required},
            {{"--issuer"}, OptionValue::required},
            {{"--team"}, OptionValue::required}};
}

std::optional<int> runNotaryCommand(const ParsedArguments &arguments)
{
    const auto &words = arguments.operands;
    const std::string &command = words.front();
    if (command == "add-api-key")
        return addApiKey(arguments);
    if (command == "make-api-key")
        return makeApiKey(arguments);
    if (command == "use-notary")
        return words.size() == 2 ? useNotary(arguments) : tellNotary();
    return std::nullopt;
}

} // namespace toolchain
