#pragma once

#include "platform/fileservice.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace sealwright {

/// Paths in the order in which they were first added.
class OrderedPathSet {
public:
    void append(const QString &path);
    /// The paths without those of the set, in their order.
    QStringList without(const QSet<QString> &others) const;
    const QStringList &paths() const { return m_paths; }

private:
    QStringList m_paths;
    QSet<QString> m_known;
};

/// Why the walk leaves an entry alone.
enum class PassedOver {
    pathToSkip, ///< the user's list names it; what lies below it is not looked at either
    currentVersion, ///< the link by which a framework names one of its versions
    noVersionFolder, ///< lies in a framework's Versions and is no folder
    packageMark, ///< PkgInfo
    seal, ///< CodeResources
    leftover, ///< would break the seal, and is deleted from the copy
    kindNeverExamined, ///< an extension of texts and scripts
    notRegular,
    notExecutable,
    noCode, ///< the file tool knows no code in it
};

/// What the walk asks about a file's contents, and whom it tells what it decides, as it decides it.
class ScanWatcher {
public:
    virtual ~ScanWatcher() = default;

    /// Whether the file is code by what is in it. Asked last, since it costs most.
    virtual bool isCode(const QString &file) = 0;

    /// The item is signed on its own. May be told of one item more than once.
    virtual void signable(const QString &item) = 0;
    /// The file is signed as a part of its bundle, whatever else is told of it.
    virtual void mainExecutable(const QString &file) = 0;
    /// The entry is left alone.
    virtual void passedOver(const QString &item, PassedOver reason) = 0;
};

/// Decides what inside an item must be signed on its own, and changes nothing. Walks the file tree; there is
/// no list of bundle kinds: what has an extension, an information dictionary that names an executable, and
/// that executable in place is a bundle. Items are absolute paths, compared as exact strings. Any thread.
class ScanDecisions {
public:
    /// `pathsToPassOver` is not looked at, nor anything below it.
    ScanDecisions(const platform::FileService &files, const QStringList &pathsToPassOver,
                  ScanWatcher &watcher)
        : m_files(files)
        , m_pathsToPassOver(pathsToPassOver)
        , m_watcher(watcher)
    {
    }

    /// Tells of what is signable in the directory, itself first if it is a bundle, and of each bundle before
    /// its contents.
    void parseDirectory(const QString &directory);
    /// The same for a framework, in which each version folder is the thing that is signed.
    void parseFramework(const QString &framework);

private:
    void checkBundle(const QString &directory);
    void parseFile(const QString &file, const platform::FolderEntry &entry);
    void parseVersions(const QString &versions);
    void parseVersion(const QString &version);
    bool isToPassOver(const QString &item);

    const platform::FileService &m_files;
    const QStringList &m_pathsToPassOver;
    ScanWatcher &m_watcher;
};

/// The order in which what was found is signed: from the inside out, and the item itself, if it is a bundle,
/// last.
[[nodiscard]] QStringList signingOrder(const OrderedPathSet &signableSet, const QSet<QString> &setToSubtract);

/// The absolute paths of what is to be passed over, which a user names by paths from the item.
[[nodiscard]] QStringList pathsToPassOver(const QString &item, const QStringList &skipPaths);

/// Whether the report of the file tool tells of code that is signed.
[[nodiscard]] bool namesSignableCode(const QString &fileToolOutput);

} // namespace sealwright
