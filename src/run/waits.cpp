#include "run/waits.h"

#include "platform/clock.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "run/item.h"
#include "run/preferencekeys.h"
#include "run/waitrecords.h"
#include "run/workingfoldernames.h"
#include "tools/slwtaskresponse.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::waits {

namespace {

constexpr qsizetype longestIdentifier = 255; // characters
constexpr qsizetype headOfLog = 64 * 1024; // bytes
constexpr qint64 daysKept = 30; // for a folder that may come back
const QString endOfSubmitted = u" - Submitted"_s;

// The identifier

/// It becomes an argument of the notary tool, which must not take it for an option.
bool canBeIdentifier(const QString &text)
{
    return !text.isEmpty() && text.size() <= longestIdentifier && !text.startsWith(u'-')
        && std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.isPrint() && !c.isSpace(); });
}

/// What the folder says of its request; empty if it does not.
QString identifierIn(const platform::Host &host, const QString &folder)
{
    const auto bytes =
        host.files.readFile(itempath::appending(folder, workingfolder::requestUUIDName.toString()));
    return bytes ? QString::fromUtf8(*bytes).trimmed() : QString();
}

// A folder on record

QString sibling(const WaitRecord &record, QStringView suffix)
{
    return itempath::appending(itempath::folder(record.folder),
                               workingfolder::name(itempath::withoutExtension(record.original), suffix));
}

/// Whether the folder is the record's: by its identifier, or while it has none yet by the item in it.
bool isFolderOf(const platform::Host &host, const WaitRecord &record, const QString &folder)
{
    if (!host.files.kind(folder).isDirectory)
        return false;
    const QString identifier = identifierIn(host, folder);
    if (!identifier.isEmpty())
        return identifier == record.identifier.trimmed();
    const QString item = itempath::appending(folder, record.item);
    return host.files.isReachable(item)
        && (record.itemState.isEmpty() || host.files.stateOf(item) == record.itemState);
}

/// The record with the name that its folder has now. Its last name but one may not be on record.
std::optional<WaitRecord> found(const platform::Host &host, WaitRecord record)
{
    for (const QString &folder : {record.folder, sibling(record, workingfolder::submitted)}) {
        if (isFolderOf(host, record, folder)) {
            record.folder = folder;
            return record;
        }
    }
    return std::nullopt;
}

/// Whether its run has got as far as its last name, and had no time to say so.
bool isOver(const platform::Host &host, const WaitRecord &record)
{
    const QString identifier = record.identifier.trimmed();
    const auto isIn = [&](QStringView suffix) {
        return identifierIn(host, sibling(record, suffix)) == identifier;
    };
    return !identifier.isEmpty() && (isIn(workingfolder::notarized) || isIn(workingfolder::failed));
}

/// Whether its folder has gone from a place that is there, and that long ago.
bool isForgotten(const platform::Host &host, const WaitRecord &record)
{
    return record.since.isValid() && record.since.daysTo(host.clock.now()) > daysKept
        && host.files.kind(itempath::folder(record.folder)).isDirectory;
}

// A folder by itself

/// "Foo" of "Foo - Submitted"; null for another name.
QString baseOf(const QString &folder)
{
    const QString name = itempath::lastComponent(folder);
    return name.endsWith(endOfSubmitted) ? name.chopped(endOfSubmitted.size()) : QString();
}

bool isSubmittable(const QString &name)
{
    return submittableExtensions().contains(itempath::lowerExtension(name));
}

/// The name of what was uploaded, as it lies there or inside the image that lies there; null if nothing does.
QString itemIn(const platform::Host &host, const QString &folder, const QString &base)
{
    QStringList images;
    for (const QString &name : host.files.contentsOfDirectory(folder, platform::FolderLink::leaveAlone)) {
        if (isSubmittable(name) && itempath::withoutExtension(name) == base)
            return name;
        if (itempath::lowerExtension(name) == "dmg"_L1)
            images.append(name); // its maker may have given it a name of its own
    }
    return images.size() == 1 ? images.first() : QString();
}

/// The name of the item as the run has noted it at the head of its log; null if it has not.
QString originalInLog(const platform::Host &host, const QString &folder, const QString &base)
{
    static const QRegularExpression line(u"Beginning processing of \\S* at '([^\\n]+)'\\n"_s);
    const auto bytes = host.files.readFile(itempath::appending(folder, workingfolder::logName.toString()));
    const QString head =
        bytes ? QString::fromUtf8(bytes->first(std::min(bytes->size(), headOfLog))) : QString();
    const QString name = itempath::lastComponent(line.match(head).captured(1));
    return isSubmittable(name) && itempath::withoutExtension(name) == base ? name : QString();
}

/// The name of what the user chose, which may still lie beside the folder.
QString originalOf(const platform::Host &host, const QString &folder, const QString &base,
                   const QString &item)
{
    if (const QString logged = originalInLog(host, folder, base); !logged.isNull())
        return logged;
    const QString likeItem = base + u'.' + itempath::extension(item);
    for (const QString &extension : QStringList{itempath::extension(item)} + submittableExtensions()) {
        const QString name = base + u'.' + extension;
        if (host.files.isReachable(itempath::appending(itempath::folder(folder), name)))
            return name;
    }
    return likeItem;
}

platform::Result<WaitRecord> inFolder(const platform::Host &host, const QString &folder)
{
    const QString base = baseOf(folder);
    const QString identifier = identifierIn(host, folder);
    if (!canBeIdentifier(identifier))
        return platform::Error{u"'%1' has no %2 with the identifier of a request."_s.arg(
            folder, workingfolder::requestUUIDName)};
    const QString item = itemIn(host, folder, base);
    if (item.isNull())
        return platform::Error{u"'%1' holds no item that could be stapled."_s.arg(folder)};
    const auto recorded = WaitRecords(host).of(identifier);
    WaitRecord wait = recorded.value_or(WaitRecord());
    wait.identifier = identifier;
    wait.folder = folder;
    wait.item = item;
    if (recorded)
        return wait;
    wait.original = originalOf(host, folder, base, item);
    wait.logsToFile = host.preferences.boolean(key::detailedLogToFile);
    return wait;
}

/// The folder that the path is meant for.
QString folderFor(const platform::Host &host, const QString &path)
{
    if (!baseOf(path).isNull())
        return path;
    if (!baseOf(itempath::folder(path)).isNull())
        return itempath::folder(path);
    const QString beside =
        itempath::appending(itempath::folder(path),
                            workingfolder::name(itempath::withoutExtension(itempath::lastComponent(path)),
                                                workingfolder::submitted));
    return isSubmittable(path) && host.files.kind(beside).isDirectory ? beside : QString();
}

} // namespace

QList<WaitRecord> all(const platform::Host &host)
{
    const WaitRecords records(host);
    QList<WaitRecord> present;
    for (const WaitRecord &record : records.all()) {
        if (const auto wait = found(host, record))
            present.append(*wait);
        else if (isOver(host, record) || isForgotten(host, record))
            records.remove(record.identifier);
    }
    return present;
}

platform::Result<WaitRecord> at(const platform::Host &host, const QString &path)
{
    const QString folder = folderFor(host, path);
    for (const WaitRecord &wait : all(host)) {
        if (wait.folder == path || wait.folder == folder)
            return wait;
    }
    if (!host.files.isReachable(path))
        return platform::Error{u"There is no item at '%1'."_s.arg(path)};
    if (folder.isNull())
        return platform::Error{u"'%1' is no folder that an upload has left."_s.arg(path)};
    return inFolder(host, folder);
}

bool isFolderOfOne(const platform::Host &host, const QString &path)
{
    return !baseOf(path).isNull() && host.files.kind(path).isDirectory
        && canBeIdentifier(identifierIn(host, path));
}

bool isAttended(const platform::Host &host, const WaitRecord &wait)
{
    return host.files.isClaimed(wait.folder);
}

} // namespace sealwright::waits
