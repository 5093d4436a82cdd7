#include "run/runfolder.h"

#include "platform/fileservice.h"
#include "platform/invariant.h"
#include "platform/itempath.h"
#include "run/workingfoldernames.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int mostKept = 99; // folders of one name with originals, where there is no trash

} // namespace

QString RunFolder::path() const
{
    return m_places.leftIn.isNull() ? itempath::folder(m_places.item) : m_places.leftIn;
}

QString RunFolder::itemPlace() const
{
    return itempath::appending(path(), itempath::lastComponent(m_places.item));
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
    const QString named = itempath::lastComponent(itempath::folder(m_places.item));
    return named == workingfolder::name(base(), workingfolder::submitted);
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
    m_places.leftIn = QString();
    const auto others = m_files.claimFolder(path()); // so that nobody begins in it now
    if (m_files.kind(path()).isDirectory && !others)
        return platform::Outcome::failure(u"another run works in it"_s);
    return makeRoom(path());
}

platform::Outcome RunFolder::create()
{
    if (!platform::holds(!m_places.fileName.isEmpty(), "a run's folder is named for an item"))
        return platform::Outcome::failure(u"there is no item"_s);
    if (const QString busy = folderAtWork(); !busy.isNull())
        return platform::Outcome::failure(u"another run works in '%1'"_s.arg(busy));
    if (auto created = m_files.createDirectory(path()); !created)
        return created;
    auto claim = m_files.claimFolder(path());
    if (!claim)
        return platform::Outcome::failure(u"another run works in it, or it is no folder of its own"_s);
    m_claim = claim;
    m_claimed(std::move(claim));
    return {};
}

platform::Outcome RunFolder::claim()
{
    auto claim = m_files.claimFolder(path());
    if (!claim)
        return platform::Outcome::failure(m_files.kind(path()).isDirectory
                                              ? u"Another run works in '%1'."_s.arg(path())
                                              : u"There is no folder '%1' any more."_s.arg(path()));
    m_claim = claim;
    m_claimed(std::move(claim));
    return {};
}

/// The folder in which another run works that would have the names of this one; null if there is none.
QString RunFolder::folderAtWork() const
{
    const QString submitted = folderNamed(path(), workingfolder::submitted);
    for (const QString &folder : {path(), submitted}) {
        if (m_files.isClaimed(folder))
            return folder;
    }
    return {};
}

/// Makes the path free. An item of the person's goes to the trash with its folder, or where there is none the
/// folder gets a number behind its name.
platform::Outcome RunFolder::makeRoom(const QString &path)
{
    if (!holdsOriginal(path))
        return m_files.removeItem(path);
    auto moved = m_files.trashItem(path);
    for (int number = 2; !moved && number <= mostKept; ++number)
        moved = m_files.moveItem(path, path + u' ' + QString::number(number));
    return moved;
}

/// Whether a finished or ended run has put an item of the person's there. An empty folder for it is none.
bool RunFolder::holdsOriginal(const QString &folder) const
{
    constexpr auto links = platform::FolderLink::leaveAlone;
    if (m_files.isReachable(itempath::appending(folder, workingfolder::unmodifiedOriginalName(base()))))
        return true;
    const auto entries = m_files.entriesOfDirectory(folder, links);
    return std::any_of(entries.cbegin(), entries.cend(), [](const platform::FolderEntry &entry) {
        return entry.name.endsWith(workingfolder::unmodifiedOriginalName({}));
    });
}

platform::Outcome RunFolder::empty()
{
    if (holdsOriginal(path()))
        return platform::Outcome::failure(u"it holds an original, which could not be put away"_s);
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

platform::Outcome RunFolder::renameTo(QStringView suffix)
{
    const auto held = m_claim.lock(); // whoever ends the run may be quicker
    const QString present = path();
    const QString target = folderNamed(present, suffix);
    putAway(target);
    auto moved = m_files.moveItem(present, target);
    m_places.leftIn = moved ? QString() : present;
    m_places.item = itempath::appending(target, itempath::lastComponent(m_places.item));
    if (!m_places.upload.isNull())
        m_places.upload = itempath::appending(target, itempath::lastComponent(m_places.upload));
    tell();
    if (!moved)
        return platform::Outcome::failure(u"The folder stays '%1': %2"_s.arg(present, moved.error()));
    return {};
}

void RunFolder::rememberItem()
{
    m_itemState = m_files.stateOf(itemPlace());
}

bool RunFolder::hasItemChanged() const
{
    return !m_itemState.isEmpty() && m_files.stateOf(itemPlace()) != m_itemState;
}

void RunFolder::putAway(const QString &earlier)
{
    if (!m_files.isReachable(earlier) || m_files.trashItem(earlier))
        return;
    const QString old = earlier + u" - old"_s;
    makeRoom(old).ignore();
    m_files.moveItem(earlier, old).ignore();
}

void RunFolder::moveOriginalIn()
{
    m_places.original = itempath::appending(itempath::folder(path()), m_places.fileName);
    tell();
    if (!m_files.isReachable(m_places.original))
        return;
    const QString keeper = path(workingfolder::unmodifiedOriginalName(base()));
    const bool isNew = !m_files.isReachable(keeper);
    if (!m_files.createDirectory(keeper))
        return;
    if (!m_files.moveItem(m_places.original, itempath::appending(keeper, m_places.fileName)) && isNew)
        m_files.removeItem(keeper).ignore(); // one that was there may hold an earlier original
}

void RunFolder::removeUpload()
{
    if (m_places.upload != m_places.item)
        m_files.removeItem(m_places.upload).ignore();
}

void RunFolder::removeItem()
{
    m_files.removeItem(itemPlace()).ignore();
}

} // namespace sealwright
