#include "run/runfolder.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

QString RunFolder::path() const
{
    return itempath::folder(m_places.item);
}

QString RunFolder::path(QStringView name) const
{
    return itempath::appending(path(), name.toString());
}

QString RunFolder::base() const
{
    return itempath::withoutExtension(m_places.fileName);
}

bool RunFolder::isSubmitted() const
{
    return itempath::lastComponent(path()) == workingfolder::name(base(), workingfolder::submitted);
}

QString RunFolder::folderNamed(const QString &beside, QStringView suffix) const
{
    return itempath::appending(itempath::folder(beside), workingfolder::name(base(), suffix));
}

void RunFolder::aimAtCopy()
{
    setItem(itempath::appending(folderNamed(m_places.original, workingfolder::working), m_places.fileName));
}

void RunFolder::setItem(const QString &path)
{
    m_places.item = path;
    tell();
}

void RunFolder::setUpload(const QString &path)
{
    m_places.upload = path;
    tell();
}

platform::Outcome RunFolder::remove()
{
    return m_files.removeItem(path());
}

platform::Outcome RunFolder::create()
{
    return m_files.createDirectory(path());
}

platform::Outcome RunFolder::empty()
{
    for (const QString &name : m_files.contentsOfDirectory(path(), platform::FolderLink::leaveAlone)) {
        if (auto removed = m_files.removeItem(path(name)); !removed)
            return removed;
    }
    return {};
}

platform::Outcome RunFolder::copyOriginal()
{
    // The tools follow links: the copy of one would lead them to the item itself.
    return m_files.copyResolvedItem(m_places.original, m_places.item);
}

void RunFolder::renameTo(QStringView suffix)
{
    const QString target = folderNamed(path(), suffix);
    putAway(target);
    m_files.moveItem(path(), target).ignore();
    m_places.item = itempath::appending(target, itempath::lastComponent(m_places.item));
    if (!m_places.upload.isNull())
        m_places.upload = itempath::appending(target, itempath::lastComponent(m_places.upload));
    tell();
}

void RunFolder::putAway(const QString &earlier)
{
    if (!m_files.isReachable(earlier) || m_files.trashItem(earlier))
        return;
    const QString old = earlier + u" - old"_s;
    m_files.removeItem(old).ignore();
    m_files.moveItem(earlier, old).ignore();
}

void RunFolder::moveOriginalIn()
{
    m_places.original = itempath::appending(itempath::folder(path()), m_places.fileName);
    tell();
    if (!m_files.isReachable(m_places.original))
        return;
    const QString keeper = path(workingfolder::unmodifiedOriginalName(base()));
    if (!m_files.createDirectory(keeper))
        return;
    if (!m_files.moveItem(m_places.original, itempath::appending(keeper, m_places.fileName)))
        m_files.removeItem(keeper).ignore();
}

void RunFolder::removeUpload()
{
    if (m_places.upload != m_places.item)
        m_files.removeItem(m_places.upload).ignore();
}

void RunFolder::removeItem()
{
    m_files.removeItem(m_places.item).ignore();
}
