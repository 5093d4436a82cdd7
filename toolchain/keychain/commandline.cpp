#include "keychain/commandline.h"

#include "support/console.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace toolchain {

namespace {

/// What a command takes. Empty texts stand behind the last of each.
struct Command {
    std::string_view name;
    std::array<std::string_view, 2> operands;
    std::array<std::string_view, 3> options;
    std::size_t leastOperands = 0;
};

constexpr std::array commands{
    Command{"make-identity", {}, {"--name", "--kind"}, 0},
    Command{"add-password", {"ITEM"}, {}, 1},
    Command{"path", {}, {}, 0},
    Command{"status", {}, {"--passphrase-file"}, 0},
    Command{"lock", {}, {"--passphrase-file"}, 0},
    Command{"unlock", {}, {"--passphrase-file"}, 0},
    Command{"set-passphrase", {}, {"--passphrase-file"}, 0},
    Command{"use-store", {"secret-service or file"}, {}, 1},
    Command{"import-token", {"PKCS11-URI"}, {"--passphrase-file"}, 1},
    Command{"add-api-key", {"ITEM", "FILE.p8"}, {"--key-id", "--issuer", "--team"}, 2},
    Command{"make-api-key", {"ITEM"}, {"--team"}, 1},
    Command{"use-notary", {"apple, local or URL"}, {}, 0},
};

std::size_t mostOperands(const Command &command)
{
    return std::size_t(std::count_if(command.operands.begin(), command.operands.end(),
                                     [](std::string_view operand) { return !operand.empty(); }));
}

bool takes(const Command &command, std::string_view option)
{
    return std::find(command.options.begin(), command.options.end(), option) != command.options.end();
}

/// The words behind the command.
std::string operandProblem(const Command &command, const ParsedArguments &arguments)
{
    const auto &words = arguments.operands;
    const std::size_t most = mostOperands(command);
    for (std::size_t index = 0; index < command.leastOperands; ++index) {
        if (index + 1 >= words.size() || words[index + 1].empty())
            return std::string(command.name) + " needs " + std::string(command.operands[index]);
    }
    return words.size() > most + 1 ? "unexpected argument '" + words[most + 1] + "'" : std::string();
}

} // namespace

std::string commandLineProblem(const ParsedArguments &arguments)
{
    if (arguments.operands.empty())
        return "a command is needed";
    const std::string &name = arguments.operands.front();
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&name](const Command &known) { return known.name == name; });
    if (command == commands.end())
        return "there is no command '" + name + "'";
    for (const auto &[option, value] : arguments.options) {
        if (!takes(*command, option))
            return name + " takes no option '" + option + "'";
    }
    return operandProblem(*command, arguments);
}

int failCommand(const QString &message)
{
    printError("sealwright-keychain: " + message.toStdString() + "\n");
    return 1;
}

} // namespace toolchain
