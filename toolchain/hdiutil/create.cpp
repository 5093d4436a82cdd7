#include "hdiutil/create.h"

#include "formats/failures.h"
#include "formats/hfsplus/hfspluswriter.h"
#include "formats/udif/guidtable.h"
#include "formats/udif/udifwriter.h"
#include "hdiutil/attachedimages.h"
#include "support/console.h"
#include "support/wholefile.h"

#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace toolchain {

namespace {

const std::string verb = "create";

/// What to make of what.
struct Plan {
    fs::path source; ///< absolute
    fs::path image; ///< absolute, ends in .dmg
    std::string volumeName;
    udif::ImageFormat format;
    int level = 1; ///< of compression; zlib's default is the real tool's
};

ParsedArguments parse(const VerbArguments &words)
{
    constexpr auto required = OptionValue::required;
    return parseArguments(words,
                          withCommonOptions({{{"-srcfolder", "-srcdir"}, required},
                                             {{"-volname", "-volName"}, required},
                                             {{"-format"}, required},
                                             {{"-fs"}, required},
                                             {{"-imagekey"}, required},
                                             {{"-layout"}, required},
                                             {{"-ov"}}}));
}

/// Nothing if the format is not one that is made here.
std::optional<udif::ImageFormat> formatFrom(const ParsedArguments &arguments)
{
    const auto format = udif::imageFormat(
        arguments.has("-format") ? QString::fromStdString(arguments.value("-format")) : u"UDZO"_s);
    return format && format->isMade() ? format : std::nullopt;
}

/// What this tool cannot do of what the arguments ask; empty if it can do all.
std::string complaintAbout(const ParsedArguments &arguments, const VerbArguments &words)
{
    const auto sources = std::count_if(words.begin(), words.end(), [](const std::string &word) {
        return word == "-srcfolder" || word == "-srcdir";
    });
    if (!arguments.error.empty())
        return arguments.error;
    if (arguments.operands.size() != 1)
        return "one image is needed";
    if (sources != 1 || !arguments.has("-srcfolder"))
        return "one -srcfolder is needed; nothing else can be made an image of here";
    if (!formatFrom(arguments))
        return "the format " + arguments.value("-format") + " is not made here; those made are "
            + udif::formatsMade().toStdString();
    if (arguments.has("-fs") && arguments.value("-fs") != "HFS+")
        return "HFS+ is the only file system that is made here";
    if (arguments.has("-layout") && arguments.value("-layout") != "GPTSPUD")
        return "GPTSPUD is the only layout that is made here";
    if (arguments.has("-imagekey") && !isZlibLevel(arguments.value("-imagekey")))
        return "the only image key here is zlib-level, from 1 to 9";
    return {};
}

Plan planFrom(const ParsedArguments &arguments)
{
    Plan plan;
    plan.source = fullPath(arguments.value("-srcfolder"));
    plan.image = fullPath(arguments.operands.front());
    if (plan.image.extension() != ".dmg")
        plan.image += ".dmg";
    plan.volumeName =
        arguments.has("-volname") ? arguments.value("-volname") : plan.source.filename().string();
    plan.format = *formatFrom(arguments);
    plan.level = levelFor(plan.format, arguments);
    if (fs::is_symlink(plan.source) && fs::is_directory(plan.source))
        plan.source = fs::canonical(plan.source);
    return plan;
}

/// A bundle is copied as the one thing that it is to its user; of a plain folder, what lies in it.
hfsplus::VolumeRoot rootOf(const fs::path &source)
{
    const bool isPlainFolder = fs::is_directory(fs::symlink_status(source)) && source.extension() != ".app"
        && !fs::exists(source / "Contents/Info.plist");
    return isPlainFolder ? hfsplus::VolumeRoot::contents : hfsplus::VolumeRoot::item;
}

/// Writes one partition of bytes that are at hand.
void writePartition(UdifWriter &writer, const QString &name, const QByteArray &bytes)
{
    writer.beginPartition(name);
    writer.write(bytes);
    writer.endPartition();
}

/// Writes the disk with the parts, and the names of the parts, that the real tool gives it.
void writeDisk(UdifWriter &writer, HfsPlusWriter &volume)
{
    const GuidTable table = guidTableFor(volume.size() / udif::sectorSize);
    writePartition(writer, u"Protective Master Boot Record (MBR : 0)"_s, table.protectiveRecord);
    writePartition(writer, u"GPT Header (Primary GPT Header : 1)"_s, table.header);
    writePartition(writer, u"GPT Partition Data (Primary GPT Table : 2)"_s, table.entries);
    writePartition(writer, u" (Apple_Free : 3)"_s, table.gap);
    writer.beginPartition(u"disk image (Apple_HFS : 4)"_s);
    if (!volume.write([&writer](QByteArrayView bytes) { return writer.write(bytes); }))
        return;
    writer.endPartition();
    writePartition(writer, u"GPT Partition Data (Backup GPT Table : 5)"_s, table.entries);
    writePartition(writer, u"GPT Header (Backup GPT Header : 6)"_s, table.backupHeader);
    writer.finish();
}

platform::Outcome makeImage(const Plan &plan, const ParsedArguments &arguments)
{
    tellDetail(arguments, "Initializing...");
    const qint64 now = std::time(nullptr);
    HfsPlusWriter volume(hfsplus::readSourceTree(plan.source, rootOf(plan.source), plan.volumeName, now),
                         now);
    if (!volume.outcome())
        return volume.outcome();
    WholeFile file(plan.image);
    if (file.descriptor() < 0)
        return systemFailure(plan.image, errno);
    tellDetail(arguments,
               "Copying " + plan.source.string() + " to a volume of "
                   + std::to_string(volume.size() / udif::sectorSize) + " sectors...");
    UdifWriter writer(file.descriptor(), plan.image, plan.format, plan.level);
    writeDisk(writer, volume);
    if (!volume.outcome() || !writer.outcome())
        return volume.outcome() ? writer.outcome() : volume.outcome();
    tellDetail(arguments, "Finishing...");
    return file.finish() ? platform::Outcome() : systemFailure(plan.image, errno);
}

} // namespace

int create(const VerbArguments &words)
{
    const ParsedArguments arguments = parse(words);
    const std::string complaint = complaintAbout(arguments, words);
    keepQuietIfAsked(arguments);
    if (!complaint.empty())
        return refuseVerbArguments(verb, complaint);
    const Plan plan = planFrom(arguments);
    if (!fs::exists(fs::symlink_status(plan.source)))
        return failVerb(verb, std::strerror(ENOENT));
    if (fs::exists(fs::symlink_status(plan.image)) && !arguments.has("-ov"))
        return failVerb(verb, std::strerror(EEXIST));
    { // makes room before room is taken
        const AttachedImages leftOver;
    }
    const auto made = makeImage(plan, arguments);
    tellDetail(arguments, "hdiutil: create: returning " + std::to_string(made ? 0 : 1));
    if (!made)
        return failVerb(verb, made.failure());
    if (arguments.has("-plist"))
        printPropertyList(QStringList{QString::fromStdString(plan.image.string())});
    else
        print("created: " + plan.image.string() + "\n");
    return 0;
}

} // namespace toolchain
