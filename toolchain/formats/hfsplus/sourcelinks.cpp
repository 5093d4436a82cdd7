#include "formats/hfsplus/sourcelinks.h"

#include "formats/bigendian.h"
#include "formats/hfsplus/hfsplusformat.h"
#include "formats/hfsplus/hfsplusrecords.h"

#include <map>

using namespace Qt::StringLiterals;

namespace toolchain::hfsplus {

namespace {

using Names = std::vector<std::size_t>; ///< places of the names of one file

/// By device and number, which tell a file of this host.
std::map<std::pair<dev_t, ino_t>, Names> filesWithManyNames(const std::vector<SourceItem> &items)
{
    std::map<std::pair<dev_t, ino_t>, Names> files;
    for (std::size_t place = 1; place < items.size(); ++place) {
        const struct stat &status = items[place].status;
        if (S_ISREG(status.st_mode) && status.st_nlink > 1)
            files[{status.st_dev, status.st_ino}].push_back(place);
    }
    std::erase_if(files, [](const auto &file) { return file.second.size() < 2; });
    return files;
}

/// Hidden from the Finder, locked, and placed where nobody looks.
QByteArray finderInfoOfLinksFolder()
{
    constexpr quint16 isInvisibleAndNameLocked = 0x5000;
    constexpr quint16 farAway = 22460;
    BigEndianBytes info;
    info.zeros(8).u16(isInvisibleAndNameLocked).u16(farAway).u16(farAway);
    return info.zeros(finderInfoSize - info.bytes().size()).bytes();
}

SourceItem linksFolderLike(const struct stat &folder)
{
    SourceItem item;
    item.storedName = QString::fromUtf16(linksFolder, linksFolderLength);
    item.status = folder;
    item.status.st_mode = S_IFDIR;
    item.finderInfo = finderInfoOfLinksFolder();
    return item;
}

/// What is left of a name when its file has moved.
void makeLink(SourceItem &item, const HardLink &link)
{
    item.link = link;
    item.data = {};
    item.resource = {};
    item.finderInfo.clear();
    item.attributes.clear();
}

void joinNames(std::vector<SourceItem> &items, std::size_t folder, const Names &names)
{
    const std::size_t place = items.size();
    SourceItem file = items[names.front()];
    file.folder = folder;
    file.storedName = u"iNode"_s + QString::number(catalogNumber(place));
    file.link = {0, names.front(), 0, 0, quint32(names.size())};
    for (std::size_t number = 0; number < names.size(); ++number) {
        const std::size_t previous = number > 0 ? names[number - 1] : 0;
        const std::size_t next = number + 1 < names.size() ? names[number + 1] : 0;
        makeLink(items[names[number]], {place, 0, previous, next, 0});
    }
    items.push_back(std::move(file));
    ++items[folder].entryCount;
}

} // namespace

void joinHardLinks(std::vector<SourceItem> &items, const struct stat &folder)
{
    const auto files = filesWithManyNames(items);
    if (files.empty())
        return;
    const std::size_t place = items.size();
    items.push_back(linksFolderLike(folder));
    ++items.front().entryCount;
    for (const auto &[file, names] : files)
        joinNames(items, place, names);
}

} // namespace toolchain::hfsplus
