#include "hdiutil/inspect.h"

#include "formats/imagevolume.h"
#include "formats/udif/chunkpacking.h"
#include "formats/udif/udifreader.h"
#include "support/confinement.h"
#include "support/console.h"

#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

udif::ImageFormat formatOf(const UdifReader &image)
{
    for (const udif::Partition &partition : image.partitions()) {
        for (const udif::Chunk &chunk : partition.chunks) {
            const udif::ImageFormat format = udif::imageFormatOf(chunk.kind);
            if (format.chunkKind == chunk.kind && chunk.kind != udif::rawChunk)
                return format;
        }
    }
    return udif::imageFormatOf(udif::rawChunk);
}

QVariantMap describe(const UdifReader &image)
{
    quint64 storedBytes = 0;
    QVariantList partitions;
    for (const udif::Partition &partition : image.partitions()) {
        for (const udif::Chunk &chunk : partition.chunks)
            storedBytes += chunk.length;
        partitions.append(QVariantMap{{u"partition-name"_s, partition.name},
                                      {u"partition-start"_s, partition.firstSector},
                                      {u"partition-length"_s, partition.sectorCount}});
    }
    const udif::ImageFormat format = formatOf(image);
    return {{u"Format"_s, QString::fromLatin1(format.name)},
            {u"Format Description"_s, QString::fromLatin1(format.description)},
            {u"Size Information"_s,
             QVariantMap{{u"Total Bytes"_s, image.sectorCount() * udif::sectorSize},
                         {u"Sector Count"_s, image.sectorCount()},
                         {u"Compressed Bytes"_s, storedBytes}}},
            {u"partitions"_s, QVariantMap{{u"partitions"_s, partitions}}}};
}

std::string asText(const QVariantMap &description)
{
    const QVariantMap sizes = description[u"Size Information"_s].toMap();
    QString text = u"Format Description: %1\nFormat: %2\nSize Information:\n"_s.arg(
        description[u"Format Description"_s].toString(), description[u"Format"_s].toString());
    for (const QString &name : sizes.keys())
        text += u"\t%1: %2\n"_s.arg(name, sizes[name].toString());
    text += u"partitions:\n"_s;
    for (const QVariant &entry : description[u"partitions"_s].toMap()[u"partitions"_s].toList()) {
        const QVariantMap partition = entry.toMap();
        text += u"\t%1\t%2\t%3\n"_s.arg(partition[u"partition-start"_s].toString(),
                                        partition[u"partition-length"_s].toString(),
                                        partition[u"partition-name"_s].toString());
    }
    return text.toStdString();
}

} // namespace

int verify(const VerbArguments &words)
{
    const auto arguments = parseArguments(words, withCommonOptions({}));
    keepQuietIfAsked(arguments);
    if (!arguments.error.empty() || arguments.operands.size() != 1)
        return refuseVerbArguments("verify",
                                   arguments.error.empty() ? "one image is needed" : arguments.error);
    const ReaderConfinement confinement;
    confinement.tellComplaint("hdiutil");
    const std::string &path = arguments.operands.front();
    UdifReader image(path);
    const auto disk = unpackByOther(image, path);
    if (!disk)
        return failVerb("verify", disk.failure());
    if (!image.verify())
        return failVerb("verify", image.outcome().failure());
    printError("hdiutil: verify: checksum of \"" + path + "\" is VALID\n");
    return 0;
}

int imageInfo(const VerbArguments &words)
{
    const auto arguments = parseArguments(words, withCommonOptions({{{"-format"}}}));
    keepQuietIfAsked(arguments);
    if (!arguments.error.empty() || arguments.operands.size() != 1)
        return refuseVerbArguments("imageinfo",
                                   arguments.error.empty() ? "one image is needed" : arguments.error);
    const ReaderConfinement confinement;
    confinement.tellComplaint("hdiutil");
    const UdifReader image(arguments.operands.front());
    if (!image.outcome())
        return failVerb("imageinfo", image.outcome().failure());
    if (arguments.has("-format"))
        print(std::string(formatOf(image).name) + "\n");
    else if (arguments.has("-plist"))
        printPropertyList(describe(image));
    else
        print(asText(describe(image)));
    return 0;
}

} // namespace toolchain
