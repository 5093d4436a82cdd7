#include "formats/hfsplus/hfsplussource.h"

#include "formats/hfsplus/hfsplusnames.h"
#include "support/wholefile.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace fs = std::filesystem;

namespace toolchain::hfsplus {

namespace {

struct stat plainFolder()
{
    struct stat status = {};
    status.st_mode = S_IFDIR | 0755;
    clock_gettime(CLOCK_REALTIME, &status.st_mtim);
    status.st_atim = status.st_ctim = status.st_mtim;
    return status;
}

class Collector {
public:
    SourceTree collect(const fs::path &source, VolumeRoot root, const QString &volumeName)
    {
        SourceItem top;
        top.path = source;
        top.storedName = volumeName;
        top.status = plainFolder();
        if (root == VolumeRoot::Contents && !readStatus(top))
            return std::move(m_tree);
        m_tree.items.push_back(top);
        if (root == VolumeRoot::Item)
            add(source, 0);
        else
            addContents(0);
        for (std::size_t place = 1; place < m_tree.items.size() && m_tree.error.empty(); ++place) {
            if (m_tree.items[place].isFolder())
                addContents(place);
        }
        return std::move(m_tree);
    }

private:
    void addContents(std::size_t folder)
    {
        const fs::path path = m_tree.items[folder].path;
        std::vector<fs::path> entries;
        std::error_code error;
        for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
            entries.push_back(entry->path());
        if (error)
            m_tree.error = systemError(path, error.value());
        std::sort(entries.begin(), entries.end());
        for (const fs::path &entry : entries) {
            if (!m_tree.error.empty())
                return;
            add(entry, folder);
        }
    }

    void add(const fs::path &path, std::size_t folder)
    {
        SourceItem item;
        item.path = path;
        item.folder = folder;
        const auto name = storedName(path.filename().native());
        if (!name) {
            m_tree.error = path.string() + ": not a name that HFS+ can hold";
            return;
        }
        item.storedName = *name;
        if (!readStatus(item))
            return;
        ++m_tree.items[folder].entryCount;
        m_tree.items.push_back(std::move(item));
    }

    bool readStatus(SourceItem &item)
    {
        if (lstat(item.path.c_str(), &item.status) != 0) {
            m_tree.error = systemError(item.path, errno);
            return false;
        }
        if (item.isLink())
            return readLink(item);
        if (!item.isFolder() && !S_ISREG(item.status.st_mode)) {
            m_tree.error = item.path.string() + ": neither a file, a folder nor a symbolic link";
            return false;
        }
        return true;
    }

    bool readLink(SourceItem &item)
    {
        std::error_code error;
        item.linkTarget = QByteArray::fromStdString(fs::read_symlink(item.path, error).native());
        if (error)
            m_tree.error = systemError(item.path, error.value());
        return !error;
    }

    SourceTree m_tree;
};

} // namespace

quint64 SourceItem::size() const
{
    if (isLink())
        return quint64(linkTarget.size());
    return isFolder() ? 0 : quint64(status.st_size);
}

SourceTree readSourceTree(const fs::path &source, VolumeRoot root, std::string_view volumeName)
{
    const auto name = storedName(volumeName);
    if (!name || name->isEmpty()) {
        SourceTree refused;
        refused.error = std::string(volumeName) + ": not a name that HFS+ can hold";
        return refused;
    }
    return Collector().collect(source, root, *name);
}

} // namespace toolchain::hfsplus
