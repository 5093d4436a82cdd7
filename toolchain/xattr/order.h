#pragma once

#include "support/arguments.h"

#include <string>
#include <vector>

namespace toolchain {

enum class Verb { List, Print, Write, Delete, Clear };

/// The verb and the words that belong to it.
struct Order {
    Verb verb = Verb::List;
    std::string name;
    std::string value;
    std::vector<std::string> files;
};

/// Carries an order out with the options -l, -r, -s, -v and -x. Answers the exit status.
[[nodiscard]] int carryOut(const Order &order, const ParsedArguments &options);

} // namespace toolchain
