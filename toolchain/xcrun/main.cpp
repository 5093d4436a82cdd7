#include "support/arguments.h"
#include "support/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>

using namespace toolchain;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view usage = R"(Usage: xcrun [--find] NAME [ARGUMENT...]
       xcrun --help

Runs the developer tool NAME of the tool root that this program lies in: from
Applications/Xcode.app/Contents/Developer/usr/bin, else from usr/bin.

  -f, --find   print where the tool is, and do not run it
  -h, --help   print this text

A stand-in for the program of the same name in Apple's developer tools.
)";

constexpr int notFoundStatus = 72;

/// The tool root, three levels above this program; empty if the system does not tell where that is.
fs::path toolRoot()
{
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path() : self.parent_path().parent_path().parent_path();
}

std::optional<fs::path> findTool(const std::string &name)
{
    if (name.empty() || name.find('/') != std::string::npos || name.starts_with('.'))
        return std::nullopt;
    const fs::path root = toolRoot();
    for (const char *folder : {"Applications/Xcode.app/Contents/Developer/usr/bin", "usr/bin"}) {
        const fs::path candidate = root / folder / name;
        if (fs::is_regular_file(candidate) && access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return std::nullopt;
}

int runTool(const fs::path &tool, char **arguments)
{
    std::string path = tool.string();
    arguments[0] = path.data();
    execv(tool.c_str(), arguments);
    printError("xcrun: error: cannot run " + path + ": " + std::strerror(errno) + "\n");
    return notFoundStatus;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "-h" || first == "--help") {
        print(usage);
        return 0;
    }
    const bool findOnly = first == "-f" || first == "--find";
    const int nameAt = findOnly ? 2 : 1;
    if (argc <= nameAt)
        return refuseArguments("xcrun: error", "no utility named", usage);
    if (!findOnly && first.starts_with('-'))
        return refuseArguments("xcrun: error", "unrecognized option '" + first + "'", usage, notBuiltStatus);

    const std::string name = argv[nameAt];
    const auto tool = findTool(name);
    if (!tool) {
        printError("xcrun: error: unable to find utility \"" + name
                   + "\", not a developer tool or in PATH\n");
        return notFoundStatus;
    }
    if (!findOnly)
        return runTool(*tool, argv + nameAt);
    print(tool->string() + "\n");
    return 0;
}
