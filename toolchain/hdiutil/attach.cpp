#include "hdiutil/attach.h"

#include "formats/failures.h"
#include "formats/hfsplus/hfsplusnames.h"
#include "formats/hfsplus/volumecopy.h"
#include "formats/imagevolume.h"
#include "hdiutil/attachedimages.h"
#include "support/confinement.h"
#include "support/console.h"

#include <QFile>
#include <QUuid>
#include <QVariantMap>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace toolchain {

namespace {

const std::string verb = "attach";

ParsedArguments parse(const VerbArguments &words)
{
    constexpr auto required = OptionValue::required;
    return parseArguments(words,
                          withCommonOptions({{{"-mountpoint"}, required},
                                             {{"-mountroot"}, required},
                                             {{"-mountrandom"}, required},
                                             {{"-owners"}, required},
                                             {{"-noverify"}},
                                             {{"-verify"}},
                                             {{"-nobrowse"}},
                                             {{"-readonly"}},
                                             {{"-noautoopen"}},
                                             {{"-autoopen"}},
                                             {{"-noidmereveal"}},
                                             {{"-noautofsck"}}}));
}

std::optional<FileIdentity> identityOf(const fs::path &path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return {};
    constexpr qint64 nanoseconds = 1'000'000'000;
    return FileIdentity{qint64(status.st_dev), qint64(status.st_ino), status.st_size,
                        status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec};
}

/// The name and those with a number that follow it, until one is free.
fs::path freePath(const fs::path &folder, const std::string &name)
{
    fs::path path = folder / name;
    for (int number = 1; fs::exists(fs::symlink_status(path)); ++number)
        path = folder / (name + " " + std::to_string(number));
    return path;
}

fs::path mountPointFor(const ParsedArguments &arguments, const AttachedImages &images,
                       const std::string &plainName)
{
    if (arguments.has("-mountpoint"))
        return fullPath(arguments.value("-mountpoint"));
    if (arguments.has("-mountroot"))
        return freePath(fullPath(arguments.value("-mountroot")), plainName);
    if (arguments.has("-mountrandom"))
        return fullPath(arguments.value("-mountrandom"))
            / ("dmg." + QUuid::createUuid().toString(QUuid::Id128).left(6).toStdString());
    return freePath(images.volumesFolder(), plainName);
}

/// The folder that a person has chosen for the volume, or for its folder; empty if none is.
fs::path chosenFolder(const ParsedArguments &arguments)
{
    for (const char *option : {"-mountpoint", "-mountroot", "-mountrandom"}) {
        if (arguments.has(option))
            return fullPath(arguments.value(option));
    }
    return {};
}

/// The chosen folder, made before the image is read, since who reads it may write into the folder alone. It
/// goes again if it is not kept.
class ChosenFolder {
public:
    explicit ChosenFolder(fs::path path)
        : m_path(std::move(path))
    {
        std::error_code ignored; // whoever wants to write there tells what is wrong
        m_isMade = !m_path.empty() && fs::create_directories(m_path, ignored);
    }
    ~ChosenFolder()
    {
        if (m_isMade && !m_isKept)
            rmdir(m_path.c_str());
    }
    ChosenFolder(const ChosenFolder &) = delete;
    ChosenFolder &operator=(const ChosenFolder &) = delete;

    [[nodiscard]] bool isMade() const { return m_isMade; }
    void keep() { m_isKept = true; }

    [[nodiscard]] ConfinementPlaces places(const AttachedImages &images) const
    {
        ConfinementPlaces places{{QFile::decodeName(images.volumesFolder().parent_path().c_str())}, {}};
        if (m_path.empty())
            return places;
        places.folders.append(QFile::decodeName(m_path.c_str()));
        places.parents.append(QFile::decodeName(m_path.parent_path().c_str()));
        return places;
    }

private:
    const fs::path m_path;
    bool m_isMade = false;
    bool m_isKept = false;
};

std::string deviceLine(const std::string &device, const std::string &content, const std::string &mountPoint)
{
    constexpr std::size_t deviceWidth = 20;
    constexpr std::size_t contentWidth = 31;
    const auto padded = [](const std::string &text, std::size_t width) {
        return text + std::string(width - std::min(width, text.size()), ' ');
    };
    return padded("/dev/" + device, deviceWidth) + '\t' + padded(content, contentWidth) + '\t' + mountPoint
        + '\n';
}

QVariantMap deviceEntry(const std::string &device, const std::string &content, const std::string &mountPoint)
{
    QVariantMap entry{{u"dev-entry"_s, QString::fromStdString("/dev/" + device)},
                      {u"content-hint"_s, QString::fromStdString(content)},
                      {u"potentially-mountable"_s, !mountPoint.empty()}};
    if (!mountPoint.empty()) {
        entry[u"mount-point"_s] = QString::fromStdString(mountPoint);
        entry[u"volume-kind"_s] = content == "Apple_APFS" ? u"apfs"_s : u"hfs"_s;
    }
    return entry;
}

int tellAttached(const AttachedImage &image, const ParsedArguments &arguments)
{
    const bool isDivided = !image.scheme.empty();
    const std::string volume = isDivided ? image.device() + "s1" : image.device();
    const std::string content = isDivided ? image.content : "";
    if (arguments.has("-plist")) {
        QVariantList entries{deviceEntry(volume, content, image.mountPoint)};
        if (isDivided)
            entries.prepend(deviceEntry(image.device(), image.scheme, {}));
        printPropertyList(QVariantMap{{u"system-entities"_s, entries}});
        return 0;
    }
    print((isDivided ? deviceLine(image.device(), image.scheme, {}) : std::string())
          + deviceLine(volume, content, image.mountPoint));
    return 0;
}

/// Fails with what keeps a folder from being the mount point.
platform::Outcome checkMountPoint(const AttachedImage &image)
{
    std::error_code error;
    if (image.wasThere && !fs::is_directory(image.mountPoint))
        return systemFailure(image.mountPoint, ENOTDIR);
    if (image.wasThere && !fs::is_empty(image.mountPoint, error) && !error)
        return systemFailure(image.mountPoint, ENOTEMPTY);
    return error ? systemFailure(image.mountPoint, error.value()) : platform::Outcome();
}

/// What is to be attached, whatever its file system.
struct Volume {
    std::string name; ///< that a folder can have
    const char *kind = ""; ///< as the list of devices calls it
    std::function<platform::Outcome(const std::string &folder)> copyInto;
};

std::string usableName(const std::optional<QByteArray> &name)
{
    return name ? name->toStdString() : "untitled";
}

Volume hfsVolume(const HfsPlusReader &volume)
{
    const hfsplus::VolumeEntry &root = volume.rootFolder();
    return {usableName(hfsplus::fileName(root.storedName, root.nameForm)), "Apple_HFS",
            [&volume](const std::string &folder) { return copyVolume(volume, folder); }};
}

/// An error tells that there is no such volume, or no 7z to read it.
platform::Result<Volume> apfsVolume(ImageVolume &source)
{
    const auto container = source.apfsContainer();
    if (!container)
        return source.outcome().failure();
    const auto volume = sevenzip::apfsVolume(container->path());
    if (!volume)
        return volume.failure();
    return Volume{usableName(hfsplus::fileName(volume->name)), "Apple_APFS",
                  [container, volume](const std::string &folder) {
                      return sevenzip::extractApfs(container->path(), *volume,
                                                   QString::fromStdString(folder));
                  }};
}

platform::Outcome copyVolumeInto(const std::string &mountPoint, const Volume &volume)
{
    std::error_code error;
    fs::create_directories(mountPoint, error);
    return error ? systemFailure(mountPoint, error.value()) : volume.copyInto(mountPoint);
}

/// Keeps a record of the copy before it is begun, so that an early end leaves nothing for good.
platform::Outcome copyIntoPlace(AttachedImage &image, const Volume &volume, const AttachedImages &images)
{
    const platform::Outcome begun = images.store(image);
    if (!begun)
        return begun;
    platform::Outcome done = copyVolumeInto(image.mountPoint, volume);
    image.isWhole = bool(done);
    if (done)
        done = images.store(image);
    if (done)
        return done;
    const platform::Outcome removed = images.remove(image);
    return platform::Error{removed ? done.error() : done.error() + u"; "_s + removed.error()};
}

int attachAnew(AttachedImage &image, const ParsedArguments &arguments, const AttachedImages &images)
{
    ChosenFolder chosen(chosenFolder(arguments));
    const ReaderConfinement confinement(chosen.places(images));
    confinement.tellComplaint("hdiutil");
    ImageVolume source(image.image);
    if (source.outcome() && !arguments.has("-noverify")) {
        tellDetail(arguments, "Verifying...");
        if (!source.image().verify())
            tellDetail(arguments, "The checksums cannot be compared, or differ.");
    }
    const bool hasNoHfs = !source.outcome() && source.image().outcome();
    const auto apfs = hasNoHfs ? apfsVolume(source) : source.outcome().failure();
    if (!source.outcome() && !apfs)
        return failVerb(verb, apfs.failure());
    const Volume volume = apfs ? *apfs : hfsVolume(source.volume());
    image.number = images.freeNumber();
    image.scheme = source.scheme();
    image.content = volume.kind;
    image.mountPoint = mountPointFor(arguments, images, volume.name).string();
    const bool isJustMade = chosen.isMade() && arguments.has("-mountpoint");
    image.wasThere = !isJustMade && fs::exists(image.mountPoint);
    platform::Outcome done = checkMountPoint(image);
    tellDetail(arguments, "Copying the volume to " + image.mountPoint);
    if (done)
        done = copyIntoPlace(image, volume, images);
    if (!done)
        return failVerb(verb, done.failure());
    chosen.keep();
    return tellAttached(image, arguments);
}

} // namespace

int attach(const VerbArguments &words)
{
    const ParsedArguments arguments = parse(words);
    keepQuietIfAsked(arguments);
    if (!arguments.error.empty() || arguments.operands.size() != 1)
        return refuseVerbArguments(verb, arguments.error.empty() ? "one image is needed" : arguments.error);
    AttachedImage image;
    image.image = fullPath(arguments.operands.front()).string();
    const auto identity = identityOf(image.image);
    if (!identity)
        return failVerb(verb, std::strerror(errno));
    image.identity = *identity;
    const AttachedImages images;
    if (!images.outcome())
        return failVerb(verb, images.outcome().failure());
    for (const AttachedImage &other : images.all()) {
        if (other.identity == image.identity && fs::exists(other.mountPoint))
            return tellAttached(other, arguments);
    }
    return attachAnew(image, arguments, images);
}

} // namespace toolchain
