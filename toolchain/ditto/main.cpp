#include "formats/zipextract.h"
#include "formats/zipwriter.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QFile>

#include <clocale>

using namespace toolchain;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view usage =
    R"(Usage: ditto -c -k [--keepParent] [--sequesterRsrc] [OPTION...] SOURCE ARCHIVE
       ditto -x -k ARCHIVE FOLDER
       ditto --help

Packs SOURCE into the zip archive ARCHIVE, with symbolic links, modes, times, extended attributes and resource forks;
or unpacks ARCHIVE into FOLDER.

  -c, -x           create an archive, or extract one
  -k               in the zip format
  --keepParent     let the entries begin with SOURCE's own name
  --rsrc, --extattr, --qtn
                   pack attributes and resource forks as AppleDouble files "._NAME" beside NAME; so without options
  --sequesterRsrc  pack them below a folder __MACOSX
  --norsrc, --noextattr
                   leave all of them out
  --zlibCompressionLevel 0..9
                   6 if not given
  -h, --help       print this text

Names are kept byte for byte. Two names that macOS takes for one are refused. Extraction refuses whatever leads out of
FOLDER. Copies of folders and cpio archives are not built into this tool.
Exit status: 0 done, 1 failed, 2 an option that is not built here, 64 wrong arguments.
)";

int fail(const std::string &problem)
{
    printError("ditto: " + problem + "\n");
    return 1;
}

/// The source without a slash at its end, so that its last part is its name.
fs::path sourceFrom(const std::string &operand)
{
    const fs::path path = fs::path(operand).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

ZipOptions optionsFrom(const ParsedArguments &arguments)
{
    ZipOptions options;
    if (arguments.has("--keepParent"))
        options.root = ZipRoot::parent;
    if (arguments.has("--sequesterRsrc"))
        options.attributes = ZipAttributes::sequestered;
    if (arguments.has("--norsrc") || arguments.has("--noextattr"))
        options.attributes = ZipAttributes::leftOut;
    if (arguments.has("--zlibCompressionLevel"))
        options.level = arguments.value("--zlibCompressionLevel").front() - '0';
    return options;
}

int pack(const ParsedArguments &arguments)
{
    const fs::path source = sourceFrom(arguments.operands[0]);
    std::error_code error;
    if (!fs::exists(fs::symlink_status(source, error)))
        return fail("Can't get real path for source '" + arguments.operands[0] + "'");
    const auto written = writeZipArchive(source, optionsFrom(arguments), arguments.operands[1]);
    return written ? 0 : fail(written.error().toStdString());
}

int unpack(const ParsedArguments &arguments)
{
    const auto path = [](const std::string &operand) {
        return QFile::decodeName(QByteArray::fromStdString(operand));
    };
    const auto unpacked = extractZipArchive(path(arguments.operands[0]), path(arguments.operands[1]));
    return unpacked ? 0 : fail(unpacked.error().toStdString());
}

/// What is asked for and not built here; empty if nothing is.
std::string complaintAbout(const ParsedArguments &arguments)
{
    const std::string level = arguments.value("--zlibCompressionLevel");
    if (arguments.has("-c") == arguments.has("-x") || !arguments.has("-k"))
        return "only -c or -x, each with -k, is built into this tool";
    if (arguments.has("--zlibCompressionLevel") && (level.size() != 1 || level < "0" || level > "9"))
        return "--zlibCompressionLevel is from 0 to 9";
    return {};
}

ParsedArguments parse(const std::vector<std::string> &words)
{
    return parseArguments(words,
                          {{{"-c"}},
                           {{"-x"}},
                           {{"-k"}},
                           {{"--keepParent"}},
                           {{"--sequesterRsrc"}},
                           {{"--rsrc", "-rsrc", "-rsrcFork"}},
                           {{"--norsrc"}},
                           {{"--extattr"}},
                           {{"--noextattr"}},
                           {{"--qtn"}},
                           {{"--zlibCompressionLevel"}, OptionValue::required},
                           {{"-h", "--help"}}});
}

} // namespace

int main(int argc, char **argv)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    const ParsedArguments arguments = parse(wordsOf(argc, argv));
    if (!arguments.error.empty())
        return refuseArguments("ditto", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (const std::string complaint = complaintAbout(arguments); !complaint.empty())
        return refuseArguments("ditto", complaint, usage, notBuiltStatus);
    if (arguments.operands.size() != 2)
        return refuseArguments("ditto",
                               arguments.has("-c") ? "one source and one archive are needed"
                                                   : "one archive and one folder are needed",
                               usage);
    return arguments.has("-c") ? pack(arguments) : unpack(arguments);
}
