#include "hdiutil/attach.h"
#include "hdiutil/convert.h"
#include "hdiutil/create.h"
#include "hdiutil/detach.h"
#include "hdiutil/inspect.h"
#include "support/console.h"
#include "support/wholefile.h"

#include <clocale>
#include <filesystem>
#include <map>

using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: hdiutil create IMAGE -srcfolder SOURCE [OPTION...]
       hdiutil attach IMAGE [OPTION...]
       hdiutil convert IMAGE -format FORMAT -o IMAGE [-ov] [-imagekey zlib-level=1..9]
       hdiutil detach [-force] MOUNTPOINT|DEVICE
       hdiutil info
       hdiutil verify IMAGE
       hdiutil imageinfo [-format] IMAGE
       hdiutil --help

create     makes a compressed disk image of a folder's contents, or of a bundle or file. The image appears
           whole or not at all; ".dmg" is added to a name that lacks it.
  -volname NAME         of the volume; SOURCE's own name if not given
  -ov                   replace an image that is there
  -format UDZO|UDBZ|ULMO|UDRO
                        packed by zlib, bzip2 or lzma, or as it is; UDZO if not given
  -fs HFS+              the only file system here
  -layout GPTSPUD       the only layout here
  -imagekey zlib-level=1..9
attach     copies the files of the image's first HFS+ volume into a mount folder, and prints it in the last
           column. An image that is attached is not copied again.
  -mountpoint FOLDER    a folder that is empty or not there
  -mountroot FOLDER     a folder of the volume's name in FOLDER
  -mountrandom FOLDER   a folder of a new name in FOLDER
  -noverify             do not compare the checksums first
  -nobrowse, -readonly, -noautoopen, -autoopen, -noidmereveal, -noautofsck, -verify, -owners on|off
                        understood; they change nothing here
convert    writes an image in another format of those above.
detach     removes the copy.
info       lists the images that are attached.
verify     compares all checksums of an image.
imageinfo  tells the format, the sizes and the partitions of an image.

With every verb: -quiet prints nothing, -verbose and -debug tell more on standard error, -plist prints a
property list.

Real: the images, with their checksums, GUID partition table and HFS+ volume with extended attributes, resource
forks, hard links, modes and dates; and their reading, also of images that other programs have made: zlib, bzip2,
lzma, ADC and plain chunks by this program, LZFSE chunks and APFS volumes by 7z where that is installed. Making an
image takes no room beside the image's own. Encrypted images are refused.
Stand-in: nothing is mounted. A mount folder holds a copy that takes the room of the files, can be written
to, and does not change the image; the devices that are printed do not exist. Owners are not kept; names that HFS+
takes for the same are refused, and so are a volume's files that are compressed by LZVN or LZFSE.
Exit status: 0 done, 1 failed, 2 wrong arguments or an option that is not built here.
)";

using Verb = int (*)(const VerbArguments &words);

const std::map<std::string, Verb> verbs{
    {"create", create}, {"convert", convert}, {"attach", attach},       {"detach", detach},
    {"info", info},     {"verify", verify},   {"imageinfo", imageInfo},
};

} // namespace

int main(int argc, char **argv)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    VerbArguments words = wordsOf(argc, argv);
    if (words.empty())
        return refuseArguments("hdiutil", "a verb is needed", usage, notBuiltStatus);
    const std::string name = words.front();
    if (name == "-h" || name == "--help" || name == "-help" || name == "help") {
        print(usage);
        return 0;
    }
    if (name.starts_with('-'))
        return refuseArguments("hdiutil", "unrecognized option '" + name + "'", usage, notBuiltStatus);
    const auto verb = verbs.find(name);
    if (verb == verbs.end())
        return refuseArguments("hdiutil", "unrecognized verb \"" + name + "\"", usage, notBuiltStatus);
    words.erase(words.begin());
    try {
        return verb->second(words);
    } catch (const std::filesystem::filesystem_error &error) {
        return failVerb(name, systemError(error.path1(), error.code().value()));
    }
}
