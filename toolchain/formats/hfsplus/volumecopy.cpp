#include "formats/hfsplus/volumecopy.h"

#include "formats/appledouble.h"
#include "formats/failures.h"
#include "formats/fileattributes.h"
#include "formats/hfsplus/hfsplusnames.h"
#include "support/openfile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <map>
#include <set>
#include <vector>

namespace fs = std::filesystem;
using platform::Outcome;

namespace toolchain {

using namespace hfsplus;

namespace {

constexpr mode_t ordinaryRights = 0777;
constexpr quint64 longestLink = 4096;

class Copier {
public:
    explicit Copier(const HfsPlusReader &volume)
        : m_volume(volume)
    {
    }

    Outcome copy(const fs::path &target)
    {
        struct statvfs room = {};
        if (statvfs(target.c_str(), &room) == 0 && contentSize() / room.f_frsize > room.f_bavail)
            return failureOf(target,
                             "the volume holds " + std::to_string(contentSize())
                                 + " bytes, for which there is no room");
        m_folders.push_back({target, &m_volume.rootFolder()});
        for (std::size_t place = 0; place < m_folders.size() && m_outcome; ++place)
            copyContents(m_folders[place].path, m_folders[place].entry->number);
        // what lies inside comes first, since a folder need not be writable afterwards
        for (auto folder = m_folders.rbegin(); folder != m_folders.rend() && m_outcome; ++folder)
            finish(folder->path, *folder->entry);
        return m_outcome;
    }

private:
    struct Folder {
        fs::path path;
        const VolumeEntry *entry = nullptr;
    };

    /// What all files claim to hold together, in bytes; they may share what they have on the volume.
    [[nodiscard]] quint64 contentSize() const
    {
        constexpr quint64 most = quint64(1) << 62;
        quint64 size = 0;
        std::set<quint32> seen;
        std::vector<quint32> folders{m_volume.rootFolder().number};
        while (!folders.empty()) {
            const quint32 number = folders.back();
            folders.pop_back();
            if (!seen.insert(number).second)
                continue;
            for (const VolumeEntry &entry : m_volume.entriesOf(number)) {
                size = std::min(most, size + std::min(most, entry.data.size));
                if (S_ISDIR(entry.mode))
                    folders.push_back(entry.number);
            }
        }
        return size;
    }

    void copyContents(const fs::path &folder, quint32 number)
    {
        if (!m_seen.insert(number).second)
            return fail(folder, "the volume is damaged");
        for (const VolumeEntry &entry : m_volume.entriesOf(number)) {
            const auto name = fileName(entry.storedName, entry.nameForm);
            if (!name)
                return fail(folder, "holds a name that no file can have here");
            copyEntry(folder / name->toStdString(), entry);
            if (!m_outcome)
                return;
        }
    }

    void copyEntry(const fs::path &path, const VolumeEntry &entry)
    {
        if (entry.isBrokenLink)
            fail(path, "a hard link, which cannot be read here");
        else if (!m_volume.canReadFile(entry))
            fail(path, "compressed by the file system, which cannot be read here");
        else if (S_ISDIR(entry.mode))
            makeFolder(path, entry);
        else if (S_ISREG(entry.mode))
            copyFile(path, entry);
        else if (S_ISLNK(entry.mode))
            copyLink(path, entry);
        else
            fail(path, "neither a file, a folder nor a symbolic link");
    }

    void makeFolder(const fs::path &path, const VolumeEntry &entry)
    {
        if (mkdir(path.c_str(), S_IRWXU) != 0)
            m_outcome = systemFailure(path, errno);
        else
            m_folders.push_back({path, &entry});
    }

    void copyFile(const fs::path &path, const VolumeEntry &entry)
    {
        const auto first = m_linkedFiles.find(entry.link);
        if (first == m_linkedFiles.end())
            return copyBytes(path, entry);
        if (link(first->second.c_str(), path.c_str()) != 0)
            m_outcome = systemFailure(path, errno);
    }

    void copyBytes(const fs::path &path, const VolumeEntry &entry)
    {
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (file < 0) {
            m_outcome = systemFailure(path, errno);
            return;
        }
        if (!m_volume.readFile(entry, [&](QByteArrayView bytes) { return write(file, bytes, path); })
            && m_outcome)
            fail(path, "cannot be read from the image");
        if (close(file) != 0 && m_outcome)
            m_outcome = systemFailure(path, errno);
        if (m_outcome)
            finish(path, entry);
        if (entry.link != 0)
            m_linkedFiles.emplace(entry.link, path);
    }

    bool write(int file, QByteArrayView bytes, const fs::path &path)
    {
        const bool isWritten = writeFully(file, {bytes.data(), std::size_t(bytes.size())});
        if (!isWritten)
            m_outcome = systemFailure(path, errno);
        return isWritten;
    }

    void copyLink(const fs::path &path, const VolumeEntry &entry)
    {
        std::string target;
        const bool isRead =
            entry.data.size <= longestLink && m_volume.read(entry.data, [&target](QByteArrayView bytes) {
                target.append(bytes.data(), std::size_t(bytes.size()));
                return true;
            });
        if (!isRead)
            fail(path, "cannot be read from the image");
        else if (symlink(target.c_str(), path.c_str()) != 0 || !setTimes(path, entry))
            m_outcome = systemFailure(path, errno);
    }

    static bool setTimes(const fs::path &path, const VolumeEntry &entry)
    {
        const std::array times{timespec{entry.accessed, 0}, timespec{entry.modified, 0}};
        return utimensat(AT_FDCWD, path.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) == 0;
    }

    void copyAttributes(const fs::path &path, const VolumeEntry &entry)
    {
        if (!entry.finderInfo.isEmpty())
            setAttribute(path, appledouble::finderInfo, entry.finderInfo);
        if (entry.resource.size > 0 && !entry.isCompressed)
            setAttribute(path, appledouble::resourceFork, m_volume.bytesOf(entry.resource));
        for (const StoredAttribute &attribute : m_volume.attributesOf(entry))
            setAttribute(path, attribute.name.toUtf8(), m_volume.valueOf(attribute));
    }

    void setAttribute(const fs::path &path, const QByteArray &name, const std::optional<QByteArray> &value)
    {
        if (!m_outcome)
            return;
        if (!value)
            return fail(path, "has an attribute that cannot be read from the image");
        const QString file = QFile::decodeName(QByteArray::fromStdString(path.native()));
        m_outcome = writeAttribute(file, name, *value);
    }

    /// Gives a file or folder its mode and times, after which it may be closed to writing.
    void finish(const fs::path &path, const VolumeEntry &entry)
    {
        copyAttributes(path, entry);
        if (!m_outcome)
            return;
        if (!setTimes(path, entry) || chmod(path.c_str(), entry.mode & ordinaryRights) != 0)
            m_outcome = systemFailure(path, errno);
    }

    void fail(const fs::path &path, const char *reason) { m_outcome = failureOf(path, reason); }

    const HfsPlusReader &m_volume;
    std::deque<Folder> m_folders; // they stay in place while others are added
    std::set<quint32> m_seen;
    std::map<quint32, fs::path> m_linkedFiles; ///< the first name of each file with more than one
    platform::Outcome m_outcome;
};

} // namespace

Outcome copyVolume(const HfsPlusReader &volume, const fs::path &folder)
{
    return Copier(volume).copy(folder);
}

} // namespace toolchain
