#include "formats/zipwriter.h"
#include "support/arguments.h"
#include "support/console.h"

#include <clocale>

using namespace toolchain;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view usage = R"(Usage: ditto -c -k [--keepParent] SOURCE ARCHIVE
       ditto --help

Packs SOURCE into the zip archive ARCHIVE, with symbolic links and modes.

  -c            create an archive
  -k            in the zip format
  --keepParent  let the entries begin with SOURCE's own name
  -h, --help    print this text

Writes zip archives and nothing else: no copies, no cpio archives, no extraction. Extended attributes and
resource forks are not packed.
)";

/// The source without a slash at its end, so that its last part is its name.
fs::path sourceFrom(const std::string &operand)
{
    const fs::path path = fs::path(operand).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

int pack(const ParsedArguments &arguments)
{
    const fs::path source = sourceFrom(arguments.operands[0]);
    std::error_code error;
    if (!fs::exists(fs::symlink_status(source, error))) {
        printError("ditto: Can't get real path for source '" + arguments.operands[0] + "'\n");
        return 1;
    }
    const ZipRoot root = arguments.has("--keepParent") ? ZipRoot::Parent : ZipRoot::Contents;
    const std::string problem = writeZipArchive(source, root, arguments.operands[1]);
    if (problem.empty())
        return 0;
    printError("ditto: " + problem + "\n");
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    const auto arguments =
        parseArguments(wordsOf(argc, argv), {{{"-c"}}, {{"-k"}}, {{"--keepParent"}}, {{"-h", "--help"}}});
    if (!arguments.error.empty())
        return refuseArguments("ditto", arguments.error, usage);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (!arguments.has("-c") || !arguments.has("-k"))
        return refuseArguments("ditto", "only -c with -k is built into this tool", usage);
    if (arguments.operands.size() != 2)
        return refuseArguments("ditto", "one source and one archive are needed", usage);
    return pack(arguments);
}
