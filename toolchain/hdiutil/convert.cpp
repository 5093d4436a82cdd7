#include "hdiutil/convert.h"

#include "formats/failures.h"
#include "formats/imagevolume.h"
#include "formats/udif/udifwriter.h"
#include "support/console.h"
#include "support/wholefile.h"

#include <QStringList>

#include <cerrno>
#include <cstring>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

const std::string verb = "convert";

/// What to make of what.
struct Plan {
    fs::path source;
    fs::path image; ///< absolute, ends in .dmg
    udif::ImageFormat format;
    int level = 0;
};

ParsedArguments parse(const VerbArguments &words)
{
    constexpr auto required = OptionValue::required;
    return parseArguments(
        words,
        withCommonOptions(
            {{{"-format"}, required}, {{"-o"}, required}, {{"-imagekey"}, required}, {{"-ov"}}}));
}

/// What this tool cannot do of what the arguments ask; empty if it can do all.
std::string complaintAbout(const ParsedArguments &arguments)
{
    const auto format = udif::imageFormat(QString::fromStdString(arguments.value("-format")));
    const std::string key = arguments.value("-imagekey");
    if (!arguments.error.empty())
        return arguments.error;
    if (arguments.operands.size() != 1 || !arguments.has("-o"))
        return "one image and -o with another are needed";
    if (!format || !format->isMade())
        return "the format " + arguments.value("-format") + " is not made here; those made are "
            + udif::formatsMade().toStdString();
    if (arguments.has("-imagekey") && !isZlibLevel(key))
        return "the only image key here is zlib-level, from 1 to 9";
    return {};
}

Plan planFrom(const ParsedArguments &arguments)
{
    Plan plan;
    plan.source = fullPath(arguments.operands.front());
    plan.image = fullPath(arguments.value("-o"));
    if (plan.image.extension() != ".dmg")
        plan.image += ".dmg";
    plan.format = *udif::imageFormat(QString::fromStdString(arguments.value("-format")));
    plan.level = levelFor(plan.format, arguments);
    return plan;
}

/// Copies one partition with its name.
bool copyPartition(UdifReader &source, const udif::Partition &partition, UdifWriter &writer)
{
    writer.beginPartition(partition.name);
    QByteArray piece(1 << 20, Qt::Uninitialized);
    const quint64 size = partition.sectorCount * udif::sectorSize;
    for (quint64 done = 0; done < size;) {
        const auto length = qsizetype(std::min(size - done, quint64(piece.size())));
        if (!source.read(partition, done, piece.data(), length)
            || !writer.write(QByteArrayView(piece).first(length)))
            return false;
        done += quint64(length);
    }
    writer.endPartition();
    return true;
}

platform::Outcome makeImage(const Plan &plan, UdifReader &source)
{
    WholeFile file(plan.image);
    if (file.descriptor() < 0)
        return systemFailure(plan.image, errno);
    UdifWriter writer(file.descriptor(), plan.image, plan.format, plan.level);
    for (const udif::Partition &partition : source.partitions()) {
        if (!copyPartition(source, partition, writer))
            return source.outcome() ? writer.outcome() : source.outcome();
    }
    writer.finish();
    if (!writer.outcome())
        return writer.outcome();
    return file.finish() ? platform::Outcome() : systemFailure(plan.image, errno);
}

} // namespace

int convert(const VerbArguments &words)
{
    const ParsedArguments arguments = parse(words);
    keepQuietIfAsked(arguments);
    if (const std::string complaint = complaintAbout(arguments); !complaint.empty())
        return refuseVerbArguments(verb, complaint);
    const Plan plan = planFrom(arguments);
    UdifReader source(plan.source);
    if (!source.outcome())
        return failVerb(verb, source.outcome().failure());
    if (fs::exists(fs::symlink_status(plan.image)) && !arguments.has("-ov"))
        return failVerb(verb, std::strerror(EEXIST));
    const auto disk = unpackByOther(source, plan.source);
    const auto made = disk ? makeImage(plan, source) : disk.failure();
    if (!made)
        return failVerb(verb, made.failure());
    if (arguments.has("-plist"))
        printPropertyList(QStringList{QString::fromStdString(plan.image.string())});
    else
        print("created: " + plan.image.string() + "\n");
    return 0;
}

} // namespace toolchain
