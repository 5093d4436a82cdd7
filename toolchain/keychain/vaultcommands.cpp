#include "keychain/vaultcommands.h"
#include "keychain/commandline.h"

#include <QFile>

#include <algorithm>

#include "formats/keychain/passphrase.h"
#include "formats/keychain/tokenimport.h"
#include "formats/keychain/vault.h"
#include "formats/statefolder.h"
#include "support/console.h"

using namespace Qt::StringLiterals;
using platform::Outcome;

namespace toolchain {

namespace {

constexpr std::string_view usageLines =
    R"(       sealwright-keychain status | lock | unlock [--passphrase-file FILE|-]
       sealwright-keychain set-passphrase [--passphrase-file FILE|-]
       sealwright-keychain use-store secret-service | file
       sealwright-keychain import-token PKCS11-URI [--passphrase-file FILE|-]
)";

constexpr std::string_view details =
    R"(  status          tell where private keys and passwords lie, and what protects them
  unlock          open the keychain until lock or the end of the login session. If there is none yet, make one that
                  the passphrase protects
  lock            close a keychain that a passphrase protects
  set-passphrase  protect the keychain by a passphrase from now on
  use-store       secret-service: have the desktop's Secret Service keep the keychain's key; file: have a file of mode
                  0600 beside the keychain keep it
  import-token    use a key that stays in its token. The URI names the token and the object (RFC 7512); a PIN is the
                  first line of the file, or asked for at the terminal

A passphrase is the first line of FILE, or of standard input for "-". Without the option it is the systemd credential
sealwright-keychain, if there is one, and else asked for at the terminal.
)";

int ended(const Outcome &outcome, const QString &text)
{
    if (!outcome)
        return failCommand(outcome.error());
    print(text.toStdString() + "\n");
    return 0;
}

QString fileOption(const ParsedArguments &arguments)
{
    return QString::fromStdString(arguments.value("--passphrase-file"));
}

QString protectionText(const Vault::Status &status)
{
    switch (status.protection) {
    case VaultProtection::keyFile:
        return u"store: file, under a random key that lies beside it\n"
               "protection: none beyond the folder's own permissions. Whoever can read this folder can use "
               "the keys;\n"
               "            set-passphrase or use-store secret-service protects them better\n"_s;
    case VaultProtection::passphrase:
        return u"store: file, under a passphrase\nprotection: AES-256-GCM, the passphrase stretched by scrypt\n"_s;
    case VaultProtection::secretService:
        return u"store: secret-service\nprotection: AES-256-GCM, the key is kept by the desktop's Secret Service\n"_s;
    }
    return {};
}

int showStatus()
{
    const auto status = Vault(keychainFolder()).status();
    if (!status)
        return failCommand(status.error());
    QString text = u"keychain: %1\n"_s.arg(keychainFolder()) + protectionText(*status);
    text += status->exists ? u"private keys: %1\n"_s.arg(status->keys)
                           : u"private keys: 0 (there is no keychain yet)\n"_s;
    text += status->isLocked ? u"state: locked\n"_s : u"state: unlocked\n"_s;
    print(text.toStdString());
    return 0;
}

/// A vault that nothing locks needs no passphrase; a script that always unlocks goes on.
int unlock(const ParsedArguments &arguments)
{
    const Vault vault(keychainFolder());
    const auto status = vault.status();
    if (!status)
        return failCommand(status.error());
    if (status->exists && status->protection != VaultProtection::passphrase) {
        printError("sealwright-keychain: the keychain is under no passphrase; set-passphrase sets one\n");
        return 0;
    }
    const auto passphrase = passphraseFrom(fileOption(arguments), u"Passphrase of the keychain:"_s);
    if (!passphrase)
        return failCommand(passphrase.error());
    return ended(vault.unlock(*passphrase), u"unlocked"_s);
}

int setPassphrase(const ParsedArguments &arguments)
{
    const Vault vault(keychainFolder());
    const auto open = vault.read();
    if (!open)
        return failCommand(open.error());
    const auto passphrase = passphraseFrom(fileOption(arguments), u"New passphrase of the keychain:"_s);
    if (!passphrase)
        return failCommand(passphrase.error());
    return ended(vault.protect(VaultProtection::passphrase, *passphrase), u"the passphrase is set"_s);
}

int useStore(const std::string &name)
{
    const Vault vault(keychainFolder());
    const QString text = u"the keychain's store is "_s + QString::fromStdString(name);
    if (name == "secret-service")
        return ended(vault.protect(VaultProtection::secretService), text);
    const auto status = vault.status();
    if (name == "file" && status && status->protection == VaultProtection::passphrase)
        return ended(Outcome::success(), text); // and keeps its passphrase
    if (name == "file")
        return ended(vault.protect(VaultProtection::keyFile), text);
    static_cast<void>(
        failCommand(u"no store '%1': secret-service or file"_s.arg(QString::fromStdString(name))));
    return usageStatus;
}

int importToken(const ParsedArguments &arguments)
{
    const QString file = fileOption(arguments);
    const auto name =
        importTokenKey(keychainFolder(), QString::fromStdString(arguments.operands[1]), [&file] {
            return file.isEmpty() ? askPassphrase(u"PIN of the token:"_s) : passphraseFromFile(file);
        });
    if (!name)
        return failCommand(name.error());
    print(u"\"%1\" can be used; its key stays in the token\n"_s.arg(*name).toStdString());
    return 0;
}

} // namespace

std::string_view vaultUsage()
{
    return usageLines;
}

std::string_view vaultDetails()
{
    return details;
}

std::vector<Option> vaultOptions()
{
    return {{{"--passphrase-file"}, OptionValue::required}};
}

std::optional<int> runVaultCommand(const ParsedArguments &arguments)
{
    const auto &words = arguments.operands;
    const std::string &command = words.front();
    if (command == "status")
        return showStatus();
    if (command == "lock")
        return ended(Vault(keychainFolder()).lock(), u"locked"_s);
    if (command == "unlock")
        return unlock(arguments);
    if (command == "set-passphrase")
        return setPassphrase(arguments);
    if (command == "use-store")
        return useStore(words[1]);
    if (command == "import-token")
        return importToken(arguments);
    return std::nullopt;
}

} // namespace toolchain
