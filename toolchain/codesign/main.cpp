#include "codesign/displaycommand.h"
#include "codesign/options.h"
#include "codesign/signcommand.h"
#include "codesign/verifycommand.h"
#include "support/arguments.h"
#include "support/console.h"

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesign;

namespace {

constexpr std::string_view usage =
    R"(Usage: codesign -s IDENTITY|- [-f] [--deep] [-o FLAGS] [--timestamp[=URL|none]] [--entitlements FILE] [-i ID]
                [-r REQUIREMENTS|FILE] [--prefix PREFIX] [--digest-algorithm=sha1,sha256]
                [--preserve-metadata[=LIST]] [--signature-size N] [-v | --verbose[=N]] PATH...
       codesign -v|--verify [--deep] [--strict] [-R REQUIREMENT] [-v | --verbose[=N]] PATH...
       codesign -d|--display [--entitlements FILE|-|:-] [-r FILE|-] [-v | --verbose[=N]] PATH...
       codesign --remove-signature PATH...
       codesign --help

Signs Mach-O files, bundles, disk images and, in extended attributes, any other file; verifies and shows
signatures.

  -s, --sign IDENTITY    a certificate's name, a part of it, or its SHA-1; - signs ad hoc, without one
  -f, --force            replace a signature that is there
  --deep                 sign, or verify, the code inside too
  -o, --options FLAGS    host, hard, kill, expires, restrict, enforcement, library, runtime, linker-signed
  --timestamp[=URL]      have the signature's time vouched for by the service that is set up, or at URL
  --entitlements FILE    an XML property list; with -d, where the entitlements are written, - for standard output
  -i, --identifier ID    in place of the bundle's identifier or the file's name
  -r, --requirements X   requirements of the code, as a text behind = or in a file; with -d, where they are written
  -R, --test-requirement X   a requirement that the code must meet
  --prefix PREFIX        put before identifiers that have no dot
  --digest-algorithm X   sha1, sha256, sha384, or several of them
  --preserve-metadata[=LIST]  of the old signature: identifier, entitlements, requirements, flags, runtime
  --signature-size N     bytes to keep for the CMS signature
  --strict               verify what newer systems ask for too
  --remove-signature     take the signature away
  -v, --verbose[=N]      tell more; -v without another operation verifies
  -h, --help             print this text

Exit status: 0 if all went well, 1 if something failed, 2 if the arguments mean nothing, 3 if the code is valid and
does not meet the requirement of -R.
)";

int run(const Options &options)
{
    if (options.operation == Operation::help) {
        print(usage);
        return 0;
    }
    if (!options.complaint.isEmpty())
        return refuse(options.complaint);
    if (options.operation == Operation::none)
        return refuse(u"nothing to do: one of -s, -v, -d and --remove-signature is needed"_s);
    if (options.paths.isEmpty())
        return refuse(u"no path was given"_s);
    switch (options.operation) {
    case Operation::sign:
        return runSign(options);
    case Operation::removeSignature:
        return runRemoveSignature(options);
    case Operation::display:
        return runDisplay(options);
    default:
        return runVerify(options);
    }
}

} // namespace

int toolchain::codesign::refuse(const QString &complaint)
{
    return refuseArguments("codesign", complaint.toStdString(), usage, notBuiltStatus);
}

int main(int argc, char **argv)
{
    return run(readOptions(wordsOf(argc, argv)));
}
