#include "support/console.h"

#include <cstdio>

namespace toolchain {

void print(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printError(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

int refuseArguments(std::string_view tool, std::string_view complaint, std::string_view usage, int status)
{
    printError(tool);
    printError(": ");
    printError(complaint);
    printError("\n");
    printError(usage);
    return status;
}

} // namespace toolchain
