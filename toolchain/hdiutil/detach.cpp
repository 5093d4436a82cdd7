#include "hdiutil/detach.h"

#include "hdiutil/attachedimages.h"
#include "support/console.h"

#include <QVariantMap>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace toolchain {

namespace {

/// Whether a person means this image: by its mount point, or by its disk or the slice of it, with or without
/// /dev.
bool isMeant(const AttachedImage &image, const std::string &name)
{
    std::string device = name.starts_with("/dev/") ? name.substr(5) : name;
    if (device == image.device() || device == image.device() + "s1")
        return true;
    std::error_code error;
    return fs::weakly_canonical(name, error) == fs::weakly_canonical(image.mountPoint, error) && !error;
}

} // namespace

int detach(const VerbArguments &words)
{
    const std::string verb = "detach";
    const auto arguments = parseArguments(words, withCommonOptions({{{"-force"}}}));
    keepQuietIfAsked(arguments);
    if (!arguments.error.empty() || arguments.operands.size() != 1)
        return refuseVerbArguments(verb,
                                   arguments.error.empty() ? "one mount point is needed" : arguments.error);
    const AttachedImages images;
    if (!images.outcome())
        return failVerb(verb, images.outcome().failure());
    for (const AttachedImage &image : images.all()) {
        if (!isMeant(image, arguments.operands.front()))
            continue;
        const auto removed = images.remove(image);
        if (!removed)
            return failVerb(verb, removed.failure());
        print(std::string("\"").append(image.device()).append("\" ejected.\n"));
        return 0;
    }
    return failVerb(verb, std::strerror(ENOENT));
}

int info(const VerbArguments &words)
{
    const auto arguments = parseArguments(words, withCommonOptions({}));
    keepQuietIfAsked(arguments);
    if (!arguments.error.empty() || !arguments.operands.empty())
        return refuseVerbArguments("info",
                                   arguments.error.empty() ? "nothing can be named" : arguments.error);
    const AttachedImages images;
    if (!images.outcome())
        return failVerb("info", images.outcome().failure());
    QVariantList list;
    for (const AttachedImage &image : images.all()) {
        list.append(QVariantMap{{u"image-path"_s, QString::fromStdString(image.image)},
                                {u"dev-entry"_s, QString::fromStdString("/dev/" + image.device())},
                                {u"mount-point"_s, QString::fromStdString(image.mountPoint)}});
        if (!arguments.has("-plist"))
            print("image-path      : " + image.image + "\n/dev/" + image.device() + "\t" + image.scheme + "\t"
                  + image.mountPoint + "\n");
    }
    if (arguments.has("-plist"))
        printPropertyList(QVariantMap{{u"images"_s, list}});
    return 0;
}

} // namespace toolchain
