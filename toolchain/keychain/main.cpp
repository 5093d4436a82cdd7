#include "formats/identities.h"
#include "formats/passwords.h"
#include "formats/statefolder.h"
#include "keychain/commandline.h"
#include "keychain/notarycommands.h"
#include "keychain/vaultcommands.h"
#include "support/arguments.h"
#include "support/console.h"

#include <algorithm>
#include <iostream>
#include <optional>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usageLines =
    R"(Usage: sealwright-keychain make-identity --name NAME [--kind application|installer]
       sealwright-keychain add-password ITEM
       sealwright-keychain path
)";

constexpr std::string_view details = R"(
Keeps the keychain that this toolchain's security, codesign and altool read.

  make-identity   have the authority of this machine make a key and a certificate with Apple's extensions for
                  Developer ID. NAME is the holder with the team identifier in parentheses, such as
                  Example Corp (A1B2C3D4E5). The certificate is then called Developer ID Application: NAME, or
                  Developer ID Installer: NAME. Does nothing if that identity is there already.
  add-password    keep the first line of standard input under the name ITEM
  path            print where the folder is
)";

constexpr std::string_view ending = R"(
Nobody but this toolchain on this machine trusts an identity that was made here, and every answer about it says so.
Exit status: 0 done, 1 failed, 2 an option that is not built, 64 wrong use.
)";

/// All commands, without what each does.
std::string shortUsage()
{
    return std::string(usageLines) + std::string(vaultUsage()) + std::string(notaryUsage())
        + "       sealwright-keychain --help\n";
}

/// A certificate's common name holds 64 characters at most (X.520, ub-common-name).
constexpr qsizetype longestCommonName = 64;

std::optional<IdentityKind> kindFrom(const ParsedArguments &arguments)
{
    const std::string kind = arguments.has("--kind") ? arguments.value("--kind") : "application";
    if (kind == "application")
        return IdentityKind::application;
    return kind == "installer" ? std::optional(IdentityKind::installer) : std::nullopt;
}

/// What keeps a name out of a listing whose lines are read by their quotes; empty if nothing does.
QString objectionTo(const QString &name, IdentityKind kind)
{
    if (name.trimmed().isEmpty())
        return u"a name is needed: --name \"Example Corp (A1B2C3D4E5)\""_s;
    const bool isPlain =
        std::all_of(name.begin(), name.end(), [](QChar c) { return c.isPrint() && c != u'"'; });
    if (!isPlain)
        return u"a name holds no quotes and no line breaks"_s;
    const qsizetype room = longestCommonName - identityCommonName({}, kind).size();
    return name.size() > room ? u"a name has %1 characters at most"_s.arg(room) : QString();
}

bool isThere(const QString &commonName)
{
    const auto identities = readIdentities(keychainFolder()).identities;
    return std::any_of(identities.begin(), identities.end(), [&commonName](const Identity &identity) {
        return identity.commonName == commonName && identity.isValidNow;
    });
}

int makeNamedIdentity(const QString &name, IdentityKind kind)
{
    const auto folder = makePrivateFolder(keychainFolder());
    if (!folder)
        return failCommand(folder.error());
    const FolderLock lock(
        keychainFolder()); // of two that start at once, the second one finds the identity there
    if (!lock.isHeld())
        return failCommand(keychainFolder() + u": cannot be locked"_s);
    const QString commonName = identityCommonName(name, kind);
    if (isThere(commonName)) {
        print("\"" + commonName.toStdString() + "\" is there already\n");
        return 0;
    }
    const auto path = makeIdentity(keychainFolder(), name, kind);
    if (!path)
        return failCommand(path.error());
    print("\"" + commonName.toStdString() + "\" made: " + path->toStdString() + "\n");
    return 0;
}

int makeIdentityFrom(const ParsedArguments &arguments)
{
    const auto kind = kindFrom(arguments);
    if (!kind)
        return refuseArguments("sealwright-keychain", "--kind is application or installer", shortUsage());
    const QString name = QString::fromStdString(arguments.value("--name"));
    const QString objection = objectionTo(name, *kind);
    if (!objection.isEmpty())
        return refuseArguments("sealwright-keychain", objection.toStdString(), shortUsage());
    return makeNamedIdentity(name, *kind);
}

int addPassword(const std::string &name)
{
    std::string password;
    std::getline(std::cin, password);
    if (password.empty())
        return failCommand(u"no password on standard input"_s);
    const auto kept = storePassword(QString::fromStdString(name), QByteArray::fromStdString(password));
    if (!kept)
        return failCommand(kept.error());
    print("password kept under \"" + name + "\"\n");
    return 0;
}

int tellPath()
{
    print(keychainFolder().toStdString() + "\n");
    return 0;
}

int run(const ParsedArguments &arguments)
{
    const std::string problem = commandLineProblem(arguments);
    if (!problem.empty())
        return refuseArguments("sealwright-keychain", problem, shortUsage());
    if (const auto notaryStatus = runNotaryCommand(arguments))
        return *notaryStatus;
    if (const auto vaultStatus = runVaultCommand(arguments))
        return *vaultStatus;
    const std::string &command = arguments.operands.front();
    if (command == "make-identity")
        return makeIdentityFrom(arguments);
    return command == "path" ? tellPath() : addPassword(arguments.operands[1]);
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<Option> options{
        {{"--name"}, OptionValue::required}, {{"--kind"}, OptionValue::required}, {{"-h", "--help"}}};
    for (const Option &option : notaryOptions())
        options.push_back(option);
    for (const Option &option : vaultOptions())
        options.push_back(option);
    const auto arguments = parseArguments(wordsOf(argc, argv), options);
    const bool isUnknown = arguments.error.starts_with("unrecognized");
    if (!arguments.error.empty())
        return refuseArguments("sealwright-keychain", arguments.error, shortUsage(),
                               isUnknown ? notBuiltStatus : usageStatus);
    if (arguments.has("-h")) {
        print(shortUsage() + std::string(details) + std::string(notaryDetails()) + std::string(vaultDetails())
              + std::string(ending));
        return 0;
    }
    return run(arguments);
}
