#pragma once

#include "support/arguments.h"

#include <string>
#include <vector>

namespace toolchain {

enum class Verb { list, print, write, remove, clear };

/// The verb and the words that belong to it.
struct Order {
    Verb verb = Verb::list;
    std::string name;
    std::string value;
    std::vector<std::string> files;
};

/// Carries an order out with the options -l, -r, -s, -v and -x. Answers the exit status.
[[nodiscard]] int carryOut(const Order &order, const ParsedArguments &options);

} // namespace toolchain
