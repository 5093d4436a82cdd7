#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace platform {

/// A file open for appending. Any thread may write.
class FileHandle {
public:
    virtual ~FileHandle() = default;

    /// Appends the bytes. A failure is not reported: what is written here is a log.
    virtual void write(const QByteArray &bytes) = 0;

    /// Closes the file. Later writes do nothing.
    virtual void close() = 0;
};

/// Tells others that somebody works in a folder, for as long as it lives. Any thread.
class FolderClaim {
public:
    FolderClaim() = default;
    FolderClaim(const FolderClaim &) = delete;
    FolderClaim &operator=(const FolderClaim &) = delete;
    virtual ~FolderClaim() = default;
};

/// What an entry is by itself: a link is neither a directory nor a regular file.
struct FileKind {
    bool isDirectory = false;
    bool isRegularFile = false;
    bool isExecutable = false; ///< the calling user may execute it
};

/// What a listing tells of an entry.
struct FolderEntry {
    QString name;
    FileKind kind;
};

/// Whether a link to a folder is listed as the folder that it leads to.
enum class FolderLink { follow, leaveAlone };

/// The size of the largest file that is read whole, in bytes: far more than any property list has.
inline constexpr qint64 mostBytesRead = 64LL * 1024 * 1024;

/// The file operations of the host. Paths are absolute. Any thread. An error text names the item and the
/// reason.
class FileService {
public:
    virtual ~FileService() = default;

    /// Whether there is an item at the path. A link counts, wherever it leads.
    virtual bool isReachable(const QString &path) const = 0;

    /// Whether there is an item at the path, or where a link at the path leads.
    virtual bool exists(const QString &path) const = 0;

    /// Whether the calling user may read the file.
    virtual bool isReadable(const QString &path) const = 0;

    /// The kind of the entry itself, without following a link; all false if it cannot be told.
    virtual FileKind kind(const QString &path) const = 0;

    /// Whether a folder is shown as one item: it has a known bundle extension, or holds an information
    /// dictionary with a package type. Nothing if there is no item.
    virtual std::optional<bool> isPackage(const QString &path) const = 0;

    /// The names in a folder, hidden ones left out, in the order in which the file system lists them. Empty
    /// when it cannot be listed, or is a link that is not to be followed.
    virtual QStringList contentsOfDirectory(const QString &path, FolderLink link) const = 0;

    /// The same with the kind of each entry, which costs less than asking for one after the other.
    virtual QList<FolderEntry> entriesOfDirectory(const QString &path, FolderLink link) const = 0;

    /// Creates the folder and those above it. A folder that is there already is no failure.
    virtual Outcome createDirectory(const QString &path) = 0;

    /// Creates an empty file in place of whatever file is there.
    virtual Outcome createFile(const QString &path) = 0;

    /// Deletes the item, a folder with all that is in it. A link is deleted, never what it leads to. A
    /// missing item is a failure.
    virtual Outcome removeItem(const QString &path) = 0;

    /// Moves the item to a path that must be free, to another file system too.
    virtual Outcome moveItem(const QString &from, const QString &to) = 0;

    /// Copies the item with links, modes, times and extended attributes to a path that must be free, as a
    /// clone where the file system can. After a failure no half of a copied file is left behind under its own
    /// name.
    virtual Outcome copyItem(const QString &from, const QString &to) = 0;

    /// The same of what the item leads to, if it is a link: to change the copy changes nothing else.
    virtual Outcome copyResolvedItem(const QString &from, const QString &to) = 0;

    /// Moves the item to the trash, from which a person can take it back.
    virtual Outcome trashItem(const QString &path) = 0;

    /// Sets the permission bits, as in chmod.
    virtual Outcome setPermissions(const QString &path, unsigned mode) = 0;

    /// The same for a regular file at a relative path in an item, unless a step of that path is a link: what
    /// lies behind it is not the item's own.
    virtual Outcome setPermissionsInside(const QString &item, const QString &inside, unsigned mode) = 0;

    /// Claims a folder, in whatever process another claim may be. The claim follows the folder's new names.
    /// Null if somebody else has it, or if no folder is at the path.
    [[nodiscard]] virtual std::shared_ptr<FolderClaim> claimFolder(const QString &path) = 0;
    /// Whether somebody has claimed the folder at the path, this process included.
    virtual bool isClaimed(const QString &path) const = 0;

    /// A digest that changes when a file of the item is changed, renamed, added or taken away. Empty if it
    /// cannot be told.
    virtual QByteArray stateOf(const QString &item) const = 0;

    /// The whole contents of a regular file of at most `mostBytesRead`. Waits for no pipe.
    virtual Result<QByteArray> readFile(const QString &path) const = 0;

    /// Writes the file in place.
    virtual Outcome writeFile(const QString &path, const QByteArray &bytes) = 0;

    /// Writes beside the file and then takes its place, so that no half of it is ever seen.
    virtual Outcome writeFileAtomically(const QString &path, const QByteArray &bytes) = 0;

    /// Opens a file that exists, for appending. Null on failure.
    [[nodiscard]] virtual std::shared_ptr<FileHandle> openForAppending(const QString &path) = 0;

    /// A new, empty folder on the volume of the item, to make the item's replacement in, and not among what
    /// the person sees.
    virtual Result<QString> replacementDirectory(const QString &forItem) = 0;

    /// Puts the item at `replacement` in the place of the one at `path`.
    virtual Outcome replaceItem(const QString &path, const QString &replacement) = 0;
};

} // namespace platform
