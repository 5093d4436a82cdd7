#include "hdiutil/attachedimages.h"

#include "formats/failures.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace toolchain {

namespace {

constexpr int firstNumber = 4; // a Mac's own disks come first

QJsonObject jsonOf(const AttachedImage &image)
{
    const auto text = [](const std::string &value) { return QString::fromStdString(value); };
    return {{u"number"_s, image.number},
            {u"image"_s, text(image.image)},
            {u"identity"_s,
             QString(u"%1 %2 %3 %4"_s)
                 .arg(image.identity.device)
                 .arg(image.identity.number)
                 .arg(image.identity.size)
                 .arg(image.identity.changed)},
            {u"mountPoint"_s, text(image.mountPoint)},
            {u"wasThere"_s, image.wasThere},
            {u"isWhole"_s, image.isWhole},
            {u"content"_s, text(image.content)},
            {u"scheme"_s, text(image.scheme)}};
}

std::optional<AttachedImage> imageFrom(const QJsonObject &json)
{
    AttachedImage image;
    image.number = json[u"number"].toInt();
    image.image = json[u"image"].toString().toStdString();
    const QStringList identity = json[u"identity"].toString().split(u' ');
    if (identity.size() == 4)
        image.identity = {identity[0].toLongLong(), identity[1].toLongLong(), identity[2].toLongLong(),
                          identity[3].toLongLong()};
    image.mountPoint = json[u"mountPoint"].toString().toStdString();
    image.wasThere = json[u"wasThere"].toBool();
    image.isWhole = json[u"isWhole"].toBool();
    image.content = json[u"content"].toString(u"Apple_HFS"_s).toStdString();
    image.scheme = json[u"scheme"].toString().toStdString();
    const bool isUsable = image.number >= firstNumber && image.mountPoint.starts_with('/');
    return isUsable ? std::optional(image) : std::nullopt;
}

/// Makes folders writable first, which a copy's need not be. Never follows links.
void removeContents(const fs::path &folder, std::error_code &error)
{
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, error);
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->symlink_status(error).type() == fs::file_type::directory)
            removeContents(entry->path(), error);
        if (!error)
            fs::remove(entry->path(), error);
        if (error)
            return;
    }
}

bool isBelow(const fs::path &link, const std::string &folder)
{
    std::error_code error;
    const std::string target = fs::read_symlink(link, error).string();
    return !error && (target == folder || target.starts_with(folder + '/'));
}

/// Whether a process has its folder or an open file in a folder. Those of other users do not let themselves
/// be looked at.
bool isInUse(const std::string &folder)
{
    std::error_code error;
    for (fs::directory_iterator process("/proc", error), end; !error && process != end;
         process.increment(error)) {
        const std::string number = process->path().filename().string();
        if (number.find_first_not_of("0123456789") != std::string::npos)
            continue;
        if (isBelow(process->path() / "cwd", folder))
            return true;
        std::error_code closed;
        for (fs::directory_iterator file(process->path() / "fd", closed); !closed && file != end;
             file.increment(closed)) {
            if (isBelow(file->path(), folder))
                return true;
        }
    }
    return false;
}

} // namespace

AttachedImages::AttachedImages()
    : m_folder(stateFolder() + u"/diskimages"_s)
{
    m_outcome = makePrivateFolder(m_folder + u"/attached"_s);
    if (!m_outcome)
        return;
    m_lock.emplace(m_folder);
    if (!m_lock->isHeld()) {
        m_outcome = platform::Error{m_folder + u": cannot be locked"_s};
        return;
    }
    clearUnfinished();
    clearUnreachable();
}

/// A folder that was there before may have got another use since: what was begun in it is only forgotten.
void AttachedImages::clearUnfinished()
{
    for (const AttachedImage &image : all()) {
        if (image.isWhole || !m_outcome)
            continue;
        if (image.wasThere)
            forget(image);
        else
            m_outcome = remove(image);
    }
}

/// What cannot be cleared away is told of when somebody detaches it.
void AttachedImages::clearUnreachable()
{
    for (const AttachedImage &image : all()) {
        if (m_outcome && image.isWhole && isUnreachable(image))
            remove(image).ignore();
    }
}

bool AttachedImages::isUnreachable(const AttachedImage &image) const
{
    std::error_code error;
    const bool hasOurPlace = !image.wasThere && fs::path(image.mountPoint).parent_path() == volumesFolder();
    const bool isGone = fs::status(image.image, error).type() == fs::file_type::not_found;
    return hasOurPlace && isGone && !isInUse(image.mountPoint);
}

std::vector<AttachedImage> AttachedImages::all() const
{
    std::vector<AttachedImage> images;
    const QDir folder(m_folder + u"/attached"_s);
    for (const QString &name : folder.entryList({u"*.json"_s}, QDir::Files)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        if (const auto image = imageFrom(QJsonDocument::fromJson(file.readAll()).object()))
            images.push_back(*image);
    }
    std::sort(images.begin(), images.end(),
              [](const AttachedImage &a, const AttachedImage &b) { return a.number < b.number; });
    return images;
}

fs::path AttachedImages::volumesFolder() const
{
    return m_folder.toStdString() + "/volumes";
}

int AttachedImages::freeNumber() const
{
    int number = firstNumber;
    while (QFile::exists(recordPath(number)))
        ++number;
    return number;
}

platform::Outcome AttachedImages::store(const AttachedImage &image) const
{
    const QByteArray bytes = QJsonDocument(jsonOf(image)).toJson();
    return writeFileAt(recordPath(image.number).toStdString(), bytes);
}

platform::Outcome AttachedImages::remove(const AttachedImage &image) const
{
    std::error_code error;
    if (fs::is_directory(fs::symlink_status(image.mountPoint, error))) {
        error.clear();
        removeContents(image.mountPoint, error);
        if (!error && !image.wasThere)
            fs::remove(image.mountPoint, error);
        if (error)
            return systemFailure(image.mountPoint, error.value());
    }
    forget(image);
    return {};
}

void AttachedImages::forget(const AttachedImage &image) const
{
    QFile::remove(recordPath(image.number));
}

QString AttachedImages::recordPath(int number) const
{
    return u"%1/attached/disk%2.json"_s.arg(m_folder).arg(number);
}

} // namespace toolchain
