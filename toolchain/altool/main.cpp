#include "altool/commands.h"
#include "support/console.h"

#include <sys/stat.h>

#include <clocale>

using namespace toolchain;

int main(int argc, char **argv)
{
    std::setlocale(LC_CTYPE, "C.UTF-8"); // of file names; the other parts would only have to be read
    umask(077); // requests are their sender's own business
    const auto arguments = parseArguments(wordsOf(argc, argv), altoolOptions());
    if (arguments.has("-h")) {
        print(altoolHelp());
        return 0;
    }
    const bool isUnknown = arguments.error.starts_with("unrecognized");
    if (!arguments.error.empty())
        return refuseArguments("altool", arguments.error, "Run altool --help for the commands.\n",
                               isUnknown ? notBuiltStatus : usageStatus);
    return runAltool(arguments);
}
