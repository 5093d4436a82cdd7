#include "formats/package/expansion.h"
#include "formats/package/payload.h"
#include "pkgutil/signaturereport.h"
#include "support/arguments.h"
#include "support/console.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: pkgutil --check-signature PACKAGE
       pkgutil --expand PACKAGE FOLDER
       pkgutil --expand-full PACKAGE FOLDER
       pkgutil --payload-files PACKAGE
       pkgutil --help

  --check-signature   tell who has signed a flat package, and whether its signature, its files and its ticket are good
  --expand            unpack a flat package into FOLDER, which must not be there; the scripts become a folder
  --expand-full       the same, and the payloads become folders too
  --payload-files     list what a package installs, one path a line
  -h, --help          print this text

Exit status: 0 done, 1 failed or not signed, 2 an option that is not built, 64 wrong arguments.
)";

int fail(const QString &path, const QString &problem)
{
    printError("pkgutil: " + path.toStdString() + ": " + problem.toStdString() + "\n");
    return 1;
}

int expand(const xar::Archive &archive, const QString &folder, package::Depth depth)
{
    const auto outcome = package::expandPackage(archive, folder, depth);
    return outcome ? 0 : fail(archive.path(), outcome.error());
}

int listPayloads(const xar::Archive &archive)
{
    const package::CpioVisitor visitor{[](const package::CpioEntry &entry) {
                                           const QByteArray path =
                                               entry.path.isEmpty() ? "." : "./" + entry.path;
                                           print((path + '\n').toStdString());
                                           return platform::Outcome();
                                       },
                                       [](QByteArrayView) { return platform::Outcome(); }};
    for (const xar::TocFile *payload : package::payloadsOf(archive)) {
        const auto outcome = package::readPayload(archive, *payload, visitor);
        if (!outcome)
            return fail(archive.path(), outcome.error());
    }
    return 0;
}

/// What was asked for: the option's name without hyphens, with the package and, for the first two, a folder.
int run(const std::string &verb, const QString &path, const QString &folder)
{
    const auto archive = xar::Archive::open(path);
    if (!archive)
        return fail(path, u"Could not open package: "_s + archive.error());
    if (verb == "--check-signature")
        return reportSignature(*archive);
    if (verb == "--payload-files")
        return listPayloads(*archive);
    return expand(*archive, folder, verb == "--expand" ? package::Depth::archive : package::Depth::payloads);
}

} // namespace

int main(int argc, char **argv)
{
    const std::vector<std::string> verbs{"--check-signature", "--expand", "--expand-full", "--payload-files"};
    std::vector<Option> known{{{"-h", "--help"}}};
    for (const std::string &verb : verbs)
        known.push_back({{verb}});
    const auto arguments = parseArguments(wordsOf(argc, argv), known);
    if (!arguments.error.empty())
        return refuseArguments("pkgutil", arguments.error, usage, notBuiltStatus);
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    std::string verb;
    for (const std::string &name : verbs)
        verb = arguments.has(name) ? name : verb;
    const std::size_t wanted = verb.starts_with("--expand") ? 2 : 1;
    if (verb.empty() || arguments.options.size() != 1 || arguments.operands.size() != wanted)
        return refuseArguments("pkgutil", "one verb and its operands are needed", usage);
    const QString folder = wanted == 2 ? QString::fromStdString(arguments.operands[1]) : QString();
    return run(verb, QDir::cleanPath(QString::fromStdString(arguments.operands[0])), QDir::cleanPath(folder));
}
