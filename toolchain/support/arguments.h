#pragma once

#include <map>
#include <string>
#include <vector>

namespace toolchain {

enum class OptionValue {
    none, ///< stands alone
    required, ///< `--name VALUE` or `--name=VALUE`
    optional ///< `--name` or `--name=VALUE`, never a word of its own
};

/// One option of a tool. The first name is the one that the parsed arguments are asked for.
struct Option {
    std::vector<std::string> names;
    OptionValue value = OptionValue::none;
};

/// A command line taken apart. Bytes are kept as the shell gave them.
class ParsedArguments {
public:
    [[nodiscard]] bool has(const std::string &name) const { return options.contains(name); }

    /// The value given last; empty if the option is absent or was given none.
    [[nodiscard]] std::string value(const std::string &name) const;

    std::map<std::string, std::string> options;
    std::vector<std::string> operands; ///< the words that belong to no option, in order
    std::string error; ///< what is wrong with the command line; empty if nothing is
};

/// Takes a command line apart. Options and operands may be mixed; `--` ends the options; letters of
/// options without a required value may share one hyphen. The parsing stops at the first error.
[[nodiscard]] ParsedArguments parseArguments(const std::vector<std::string> &words,
                                             const std::vector<Option> &known);

/// What main was given, without the program's own name.
[[nodiscard]] std::vector<std::string> wordsOf(int argc, char **argv);

} // namespace toolchain
