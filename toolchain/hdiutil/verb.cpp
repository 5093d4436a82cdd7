#include "hdiutil/verb.h"

#include "support/console.h"

#include "platform/propertylist/propertylist.h"

#include <cstdio>
#include <cstdlib>

namespace toolchain {

namespace {

constexpr int failureStatus = 1;

bool isTalkative(const ParsedArguments &arguments)
{
    return arguments.has("-verbose") || arguments.has("-debug");
}

} // namespace

std::vector<Option> withCommonOptions(std::vector<Option> options)
{
    options.insert(options.end(), {{{"-quiet"}}, {{"-verbose"}}, {{"-debug"}}, {{"-plist"}}});
    return options;
}

void keepQuietIfAsked(const ParsedArguments &arguments)
{
    if (!arguments.has("-quiet") || isTalkative(arguments))
        return;
    for (std::FILE *stream : {stdout, stderr}) {
        if (!std::freopen("/dev/null", "w", stream))
            std::exit(failureStatus); // nobody could be told
    }
}

void tellDetail(const ParsedArguments &arguments, const std::string &line)
{
    if (isTalkative(arguments))
        printError(line + "\n");
}

void printPropertyList(const QVariant &value)
{
    print(platform::xmlPropertyListData(value).valueOr({}).toStdString());
}

int failVerb(const std::string &verb, const std::string &reason)
{
    printError("hdiutil: " + verb + " failed - " + reason + "\n");
    return failureStatus;
}

int failVerb(const std::string &verb, const platform::Error &reason)
{
    return failVerb(verb, reason.text.toStdString());
}

std::filesystem::path fullPath(const std::string &path)
{
    const std::filesystem::path full = std::filesystem::absolute(path).lexically_normal();
    return full.has_filename() ? full : full.parent_path();
}

bool isZlibLevel(const std::string &key)
{
    const std::string name = "zlib-level=";
    return key.size() == name.size() + 1 && key.starts_with(name) && key.back() >= '1' && key.back() <= '9';
}

int levelFor(const udif::ImageFormat &format, const ParsedArguments &arguments)
{
    constexpr int best = 9;
    if (format.chunkKind != udif::zlibChunk)
        return best;
    return arguments.has("-imagekey") ? arguments.value("-imagekey").back() - '0' : 1;
}

int refuseVerbArguments(const std::string &verb, const std::string &complaint)
{
    return refuseArguments("hdiutil " + verb, complaint, "Usage: see hdiutil --help\n", notBuiltStatus);
}

} // namespace toolchain
