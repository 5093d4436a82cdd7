#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace toolchain::codesign {

enum class Operation { none, sign, verify, display, removeSignature, help };

/// A command line taken apart. Nothing where an option was not given.
struct Options {
    Operation operation = Operation::none;
    int verbosity = 0;
    QStringList paths;
    bool forces = false;
    bool isDeep = false;
    bool isStrict = false;
    std::optional<QString> identity;
    std::optional<QString> flags;
    std::optional<QString> timestamp; ///< empty: of the service that is set up
    std::optional<QString> entitlements;
    std::optional<QString> identifier;
    std::optional<QString> requirements; ///< -r
    std::optional<QString> testRequirement; ///< -R
    std::optional<QString> prefix;
    std::optional<QString> digests;
    std::optional<QString> preserved; ///< empty: everything
    std::optional<QString> signatureSize;
    QString complaint; ///< what is wrong with the command line; empty if nothing is
};

/// Takes a command line apart as getopt_long(3) does: letters may share a hyphen, a letter's value may follow
/// it or be the next word, a long name's value follows "=" or, where it must have one, is the next word;
/// names may be shortened as long as they are unique. Options and paths may be mixed, "--" ends the options.
[[nodiscard]] Options readOptions(const std::vector<std::string> &words);

} // namespace toolchain::codesign
