#include "security/commands.h"
#include "support/console.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: security find-identity [-v] [-p codesigning | -p basic]
       security import FILE [--passphrase-file FILE|-]
       security delete-identity -Z SHA1 | -c NAME
       security add-generic-password -s ITEM [-a ACCOUNT] [-U]
       security find-generic-password -s ITEM [-a ACCOUNT] [-w]
       security delete-generic-password -s ITEM [-a ACCOUNT]
       security --help

Works with the identities and passwords of the keychain folder. See sealwright-keychain, which makes identities of this
machine's own authority, protects the keychain, and tells where it is.

  find-identity            list the certificates whose private key is there
    -v                     only those that are good: within their dates, and with a chain up to Apple's root or to the
                           authority of this machine
    -p codesigning         only those that may sign code
    -p basic               all kinds, as without -p
  import                   take certificates and keys from PKCS#12, PEM or DER. The passphrase is the first line of the
                           file, or of standard input for "-"; else it is asked for at the terminal
  delete-identity          remove a certificate and its private key: -Z by its SHA-1, -c by its name or a part of it
  add-generic-password     keep a password, which comes from standard input; -U replaces one that is there
  find-generic-password    tell of an item; with -w print its password and nothing else
  delete-generic-password  remove an item
  -h, --help               print this text

Secrets are never taken from the command line. Exit status: 0 done, 2 an option or command that is not built in,
36 the keychain is locked, 44 no such item, 45 there is such an item already, 64 wrong use, 1 anything else.
)";

struct Command {
    std::string name;
    int (*run)(const ParsedArguments &);
    std::vector<Option> options;
    std::size_t operands = 0;
};

const std::vector<Option> itemOptions{{{"-s"}, OptionValue::required}, {{"-a"}, OptionValue::required}};

std::vector<Option> itemOptionsAnd(const Option &option)
{
    std::vector<Option> options = itemOptions;
    options.push_back(option);
    return options;
}

const std::vector<Command> commands{
    {"find-identity", security::findIdentity, {{{"-v"}}, {{"-p"}, OptionValue::required}}},
    {"import", security::import, {{{"--passphrase-file"}, OptionValue::required}}, 1},
    {"delete-identity",
     security::deleteIdentity,
     {{{"-Z"}, OptionValue::required}, {{"-c"}, OptionValue::required}}},
    {"add-generic-password", security::addGenericPassword, itemOptionsAnd({{"-U"}})},
    {"find-generic-password", security::findGenericPassword, itemOptionsAnd({{"-w"}})},
    {"delete-generic-password", security::deleteGenericPassword, itemOptions},
};

int runCommand(const Command &command, const std::vector<std::string> &words)
{
    const auto arguments = parseArguments(words, command.options);
    if (!arguments.error.empty()) {
        const bool isUnknown = arguments.error.starts_with("unrecognized");
        return security::refuse(command.name + ": " + arguments.error,
                                isUnknown ? notBuiltStatus : usageStatus);
    }
    if (arguments.operands.size() == command.operands)
        return command.run(arguments);
    return security::refuse(command.name + (command.operands == 0 ? ": takes no file" : ": takes one file"),
                            usageStatus);
}

} // namespace

namespace toolchain::security {

int fail(const QString &message, int status)
{
    printError("security: " + message.toStdString() + "\n");
    return status;
}

int refuse(std::string_view complaint, int status)
{
    return refuseArguments("security", complaint, usage, status);
}

} // namespace toolchain::security

int main(int argc, char **argv)
{
    const auto words = wordsOf(argc, argv);
    const std::string name = words.empty() ? "" : words.front();
    const bool wantsHelp = std::any_of(
        words.begin(), words.end(), [](const std::string &word) { return word == "-h" || word == "--help"; });
    if (wantsHelp) {
        print(usage);
        return 0;
    }
    for (const Command &command : commands) {
        if (command.name == name)
            return runCommand(command, {words.begin() + 1, words.end()});
    }
    return security::refuse(name.starts_with('-') ? "unrecognized option '" + name + "'"
                                                  : "unknown command \"" + name + "\"",
                            notBuiltStatus);
}
