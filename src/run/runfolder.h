#pragma once

#include "platform/result.h"

#include <functional>
#include <memory>

namespace platform {
class FileService;
class FolderClaim;
} // namespace platform

namespace sealwright {

/// Where the things of a run lie. Paths.
struct Places {
    QString original; ///< the item that the user chose
    QString fileName; ///< its last component, which the folder is named for
    QString item; ///< what is worked on: the copy in the working folder, or the item itself
    QString upload; ///< the file that is uploaded; null until there is one
    QString leftIn = {}; ///< the folder that holds all this in truth, where it has not got its last name;
                         ///< null otherwise
};

/// The folder beside the item in which a run works, from its making to its last name, and the item's way into
/// it. Worker thread.
class RunFolder {
public:
    /// Whoever keeps the places as well is told each time that one changes.
    using Moved = std::function<void(const Places &)>;
    /// Whoever ends the run gets the claim on its folder, and lets go of it then.
    using Claimed = std::function<void(std::shared_ptr<platform::FolderClaim>)>;

    RunFolder(platform::FileService &files, Places places, Moved moved, Claimed claimed)
        : m_files(files)
        , m_places(std::move(places))
        , m_moved(std::move(moved))
        , m_claimed(std::move(claimed))
    {
    }

    const Places &places() const { return m_places; }
    /// The folder that the item lies in: the one that it has been left in, where it could not get its new
    /// name.
    QString path() const;
    /// Where the item really lies. The places name where it should.
    QString itemPlace() const;
    /// Path of something in it.
    QString path(QStringView name) const;
    /// The item's name without its extension.
    QString base() const;
    /// Whether the folder has the name that an accepted upload gives it.
    bool isSubmitted() const;

    /// Has the copy, which is not there yet, be the item; the folder is the one that "Working" names.
    void aimAtCopy();
    void setItem(const QString &path);
    void setUpload(const QString &path);

    /// Has what an earlier run has left under the folder's name go, but for an original of the person's,
    /// which is put away. Fails where another run works in it.
    platform::Outcome remove();
    /// Makes the folder, if it is not there, and claims it. Fails where another run works in it, or waits for
    /// the verdict in the one that it becomes.
    platform::Outcome create();
    /// Removes all that is in the folder. Fails where that would take an original of the person's.
    platform::Outcome empty();
    /// Copies the original to the item's place.
    platform::Outcome copyOriginal();

    /// Gives the folder its next name. What has that name goes to the trash, or where there is none, gets
    /// " - old" behind its name. The places are the new ones in any case; a failure tells where all of it
    /// lies.
    platform::Outcome renameTo(QStringView suffix);
    /// Puts the user's untouched item into the folder, after a success. Nothing is reported.
    void moveOriginalIn();

    /// Has the folder that is there already, and everybody else know of it. Fails where another run works in
    /// it, or where it has gone.
    platform::Outcome claim();

    /// Keeps what the item is like, and tells whether it is still like that.
    void rememberItem();
    /// The same with what another run has kept; empty for nothing.
    void rememberItem(const QByteArray &state) { m_itemState = state; }
    const QByteArray &itemState() const { return m_itemState; }
    bool hasItemChanged() const;

    /// Deletes the file that is uploaded, unless it is the item itself.
    void removeUpload();
    void removeItem();

private:
    QString folderNamed(const QString &beside, QStringView suffix) const;
    QString folderAtWork() const;
    platform::Outcome makeRoom(const QString &path);
    bool holdsOriginal(const QString &folder) const;
    void putAway(const QString &earlier);
    void tell() { m_moved(m_places); }

    platform::FileService &m_files;
    Places m_places;
    const Moved m_moved;
    const Claimed m_claimed;
    std::weak_ptr<platform::FolderClaim> m_claim;
    QByteArray m_itemState;
};

} // namespace sealwright
