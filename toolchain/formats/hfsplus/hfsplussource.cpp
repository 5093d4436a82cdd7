#include "formats/hfsplus/hfsplussource.h"

#include "formats/appledouble.h"
#include "formats/failures.h"
#include "formats/fileattributes.h"
#include "formats/hfsplus/hfsplusformat.h"
#include "formats/hfsplus/hfsplusnames.h"
#include "formats/hfsplus/sourcelinks.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

namespace fs = std::filesystem;

namespace toolchain::hfsplus {

namespace {

struct stat plainFolder(qint64 time)
{
    struct stat status = {};
    status.st_mode = S_IFDIR | 0755;
    status.st_mtim.tv_sec = status.st_atim.tv_sec = status.st_ctim.tv_sec = time;
    return status;
}

QString textOf(const fs::path &path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

class Collector {
public:
    SourceTree collect(SourceItem top, VolumeRoot root, qint64 time)
    {
        const fs::path source = top.path;
        top.status = plainFolder(time);
        if (root == VolumeRoot::contents && !readWhatItIs(top))
            return std::move(m_tree);
        m_tree.items.push_back(top);
        if (root == VolumeRoot::item)
            add(source, 0);
        else
            addContents(0);
        for (std::size_t place = 1; place < m_tree.items.size() && m_tree.outcome; ++place) {
            if (m_tree.items[place].isFolder())
                addContents(place);
        }
        if (m_tree.outcome)
            joinHardLinks(m_tree.items, plainFolder(time));
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
            m_tree.outcome = systemFailure(path, error.value());
        std::sort(entries.begin(), entries.end());
        for (const fs::path &entry : entries) {
            if (!m_tree.outcome)
                return;
            if (!isSidecar(textOf(entry)))
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
            m_tree.outcome = failureOf(path, "not a name that HFS+ can hold");
            return;
        }
        item.storedName = *name;
        item.nameForm = formOf(path.filename().native(), *name);
        if (!readWhatItIs(item))
            return;
        ++m_tree.items[folder].entryCount;
        m_tree.items.push_back(std::move(item));
    }

    bool readWhatItIs(SourceItem &item)
    {
        if (lstat(item.path.c_str(), &item.status) != 0)
            return fail(systemFailure(item.path, errno));
        if (item.isLink() && !readLink(item))
            return false;
        if (!item.isLink() && !item.isFolder() && !S_ISREG(item.status.st_mode))
            return fail(failureOf(item.path, "neither a file, a folder nor a symbolic link"));
        if (S_ISREG(item.status.st_mode))
            item.data.size = quint64(item.status.st_size);
        return readAttributesOf(item);
    }

    bool readLink(SourceItem &item)
    {
        std::error_code error;
        item.linkTarget = QByteArray::fromStdString(fs::read_symlink(item.path, error).native());
        item.data.size = quint64(item.linkTarget.size());
        return !error || fail(systemFailure(item.path, error.value()));
    }

    bool readAttributesOf(SourceItem &item)
    {
        auto attributes = readAttributes(textOf(item.path));
        if (!attributes)
            return fail(attributes.failure());
        item.resource.size = quint64(attributes->take(appledouble::resourceFork).size());
        const QByteArray info = attributes->take(appledouble::finderInfo);
        if (!info.isEmpty())
            item.finderInfo = info.leftJustified(finderInfoSize, '\0', true);
        for (auto attribute = attributes->begin(); attribute != attributes->end(); ++attribute) {
            if (!addAttribute(item, attribute.key(), attribute.value()))
                return false;
        }
        std::sort(item.attributes.begin(), item.attributes.end(),
                  [](const SourceAttribute &a, const SourceAttribute &b) { return a.name < b.name; });
        return true;
    }

    bool addAttribute(SourceItem &item, const QByteArray &name, const QByteArray &value)
    {
        SourceAttribute attribute;
        attribute.name = QString::fromUtf8(name);
        if (attribute.name.size() > longestAttributeName)
            return fail(
                failureOf(item.path, "the name of its attribute " + name.toStdString() + " is too long"));
        if (value.size() <= longestInlineAttribute)
            attribute.value = value;
        else
            attribute.fork.size = quint64(value.size());
        item.attributes.push_back(attribute);
        return true;
    }

    bool fail(const platform::Error &error)
    {
        m_tree.outcome = error;
        return false;
    }

    SourceTree m_tree;
};

} // namespace

SourceTree readSourceTree(const fs::path &source, VolumeRoot root, std::string_view volumeName, qint64 time)
{
    const auto name = storedName(volumeName);
    if (!name || name->isEmpty()) {
        SourceTree refused;
        refused.outcome = failureOf(volumeName, "not a name that HFS+ can hold");
        return refused;
    }
    SourceItem top;
    top.path = source;
    top.storedName = *name;
    top.nameForm = formOf(volumeName, *name);
    return Collector().collect(std::move(top), root, time);
}

} // namespace toolchain::hfsplus
