#include "formats/imagecontents.h"

#include "formats/hfsplus/hfsplusnames.h"
#include "formats/imagevolume.h"

#include <sys/stat.h>

#include <set>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace hfsplus;

namespace {

class ContentsReader {
public:
    ContentsReader(const HfsPlusReader &volume, const KeepsBytes &keepsBytes)
        : m_volume(volume)
        , m_keepsBytes(keepsBytes)
    {
    }

    PackedFiles read()
    {
        m_folders.emplace_back(QString(), m_volume.rootFolder().number);
        while (!m_folders.empty() && m_contents.error.isEmpty()) {
            const auto [path, number] = m_folders.back();
            m_folders.pop_back();
            readFolder(path, number);
        }
        return std::move(m_contents);
    }

private:
    void readFolder(const QString &path, quint32 number)
    {
        if (!m_seen.insert(number).second)
            return fail(path, "the volume is damaged");
        for (const VolumeEntry &entry : m_volume.entriesOf(number)) {
            const auto name = fileName(entry.storedName, entry.nameForm);
            if (!name)
                return fail(path, "holds a name that no file can have");
            readEntry(path + QString::fromUtf8(*name), entry);
            if (!m_contents.error.isEmpty())
                return;
        }
    }

    void readEntry(const QString &path, const VolumeEntry &entry)
    {
        if (entry.isBrokenLink)
            fail(path, "a hard link, which cannot be read here");
        else if (!m_volume.canReadFile(entry))
            fail(path, "compressed by the file system, which cannot be read here");
        else if (S_ISDIR(entry.mode))
            m_folders.emplace_back(path + u'/', entry.number);
        else if (S_ISREG(entry.mode))
            readFile(path, entry);
        else if (S_ISLNK(entry.mode))
            readLink(path, entry);
        else
            fail(path, "neither a file, a folder nor a symbolic link");
    }

    void readFile(const QString &path, const VolumeEntry &entry)
    {
        PackedFileTaker file(m_contents, path, m_keepsBytes(path));
        const bool isRead =
            m_volume.readFile(entry, [&file](QByteArrayView bytes) { return file.add(bytes); });
        if (isRead)
            file.finish();
        else if (m_contents.error.isEmpty())
            fail(path, "cannot be read from the image");
    }

    void readLink(const QString &path, const VolumeEntry &entry)
    {
        constexpr quint64 longestLink = 4096;
        QByteArray target;
        const bool isRead =
            entry.data.size <= longestLink && m_volume.read(entry.data, [&target](QByteArrayView bytes) {
                target.append(bytes);
                return true;
            });
        if (!isRead)
            return fail(path, "cannot be read from the image");
        m_contents.files.insert(path, {{}, {}, QString::fromUtf8(target) + u""_s});
    }

    void fail(const QString &path, const char *reason)
    {
        m_contents.error = u"\"%1\": %2"_s.arg(path, QLatin1StringView(reason));
    }

    const HfsPlusReader &m_volume;
    const KeepsBytes &m_keepsBytes;
    std::vector<std::pair<QString, quint32>> m_folders; ///< yet to be read; the paths end in a slash
    std::set<quint32> m_seen;
    PackedFiles m_contents;
};

} // namespace

PackedFiles readImageContents(const QString &path, const KeepsBytes &keepsBytes)
{
    ImageVolume image(path.toStdString());
    if (!image.error().empty())
        return {{}, {}, QString::fromStdString(image.error())};
    PackedFiles contents = ContentsReader(image.volume(), keepsBytes).read();
    if (!image.error().empty())
        contents.error = QString::fromStdString(image.error());
    return contents;
}

} // namespace toolchain
