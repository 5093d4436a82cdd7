#include "run/waitrecords.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/privatefile.h"

#include <QCryptographicHash>
#include <QUrl>

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr unsigned ownersFolder = 0700;
constexpr qsizetype longestName = 200; // characters
const QString extension = u"json"_s;

QString waitingFolder(const platform::Host &host)
{
    return host.stateFolder.isEmpty() ? QString() : itempath::appending(host.stateFolder, u"waiting"_s);
}

/// The identifier itself, if it can be a file's name; the service may choose any.
QString nameFor(const QString &identifier)
{
    QString name = QString::fromLatin1(QUrl::toPercentEncoding(identifier));
    if (name.startsWith(u'.'))
        name.replace(0, 1, u"%2E"_s);
    if (name.size() > longestName)
        name = QString::fromLatin1(
            QCryptographicHash::hash(identifier.toUtf8(), QCryptographicHash::Sha256).toHex());
    return name + u'.' + extension;
}

} // namespace

WaitRecords::WaitRecords(const platform::Host &host)
    : m_files(host.files)
    , m_folder(waitingFolder(host))
{
}

QString WaitRecords::path(const QString &identifier) const
{
    return itempath::appending(m_folder, nameFor(identifier));
}

platform::Outcome WaitRecords::keep(const WaitRecord &record) const
{
    if (m_folder.isEmpty())
        return {};
    if (auto made = m_files.createDirectory(m_folder); !made)
        return made;
    m_files.setPermissions(m_folder, ownersFolder).ignore();
    return writePrivately(m_files, path(record.identifier), toJson(record));
}

void WaitRecords::remove(const QString &identifier) const
{
    if (!m_folder.isEmpty() && !identifier.isEmpty())
        m_files.removeItem(path(identifier)).ignore();
}

std::optional<WaitRecord> WaitRecords::of(const QString &identifier) const
{
    if (m_folder.isEmpty() || identifier.isEmpty())
        return std::nullopt;
    const auto bytes = m_files.readFile(path(identifier));
    return bytes ? waitRecordFromJson(*bytes) : std::nullopt;
}

QList<WaitRecord> WaitRecords::all() const
{
    QList<WaitRecord> records;
    if (m_folder.isEmpty())
        return records;
    for (const QString &name : m_files.contentsOfDirectory(m_folder, platform::FolderLink::follow)) {
        if (itempath::extension(name) != extension)
            continue;
        const auto bytes = m_files.readFile(itempath::appending(m_folder, name));
        if (const auto record = bytes ? waitRecordFromJson(*bytes) : std::nullopt)
            records.append(*record);
    }
    std::sort(records.begin(), records.end(), [](const WaitRecord &one, const WaitRecord &other) {
        return std::tie(one.since, one.folder) < std::tie(other.since, other.folder);
    });
    return records;
}

platform::Outcome KeptWait::keep(const WaitRecord &record)
{
    m_record = record;
    return m_records.keep(record);
}

void KeptWait::forgetItemState()
{
    if (!isKept() || m_record.itemState.isEmpty())
        return;
    m_record.itemState.clear();
    m_records.keep(m_record).ignore();
}

void KeptWait::end()
{
    m_records.remove(m_record.identifier);
    m_record = {};
}

} // namespace sealwright
