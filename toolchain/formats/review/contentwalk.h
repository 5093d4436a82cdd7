#pragma once

#include "formats/review/unpack.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

#include <sys/types.h>

namespace toolchain::review {

/// Where the walk has come to.
struct WalkPlace {
    QString path; ///< from the item, "." for the item itself; what is in an archive stands below the
                  ///< archive's path
    QString file; ///< the absolute path under which it can be read as long as the visit lasts
    int archiveDepth = 0; ///< in how many archives it lies

    [[nodiscard]] bool isInArchive() const { return archiveDepth > 0; }
};

/// A regular file, as far as it has been read. Lasts as long as the visit.
struct WalkFile {
    WalkPlace place;
    int descriptor = -1; ///< open for reading
    QByteArray beginning; ///< enough of it to tell what it is; all of small files

    /// Ask the system, which most visits can do without; 0 where it does not know.
    [[nodiscard]] mode_t mode() const;
    [[nodiscard]] qint64 size() const; ///< in bytes
};

/// Is told what the walk finds, in the order of names, a folder before what is in it. All but `machO` may be
/// left out.
class WalkVisitor {
public:
    virtual ~WalkVisitor() = default;

    /// Every name that the folder has, hidden ones too, sorted.
    virtual void folder(const WalkPlace &place, const QStringList &names);
    virtual void machO(const WalkFile &file) = 0;
    /// A file that begins with "#!".
    virtual void script(const WalkFile &file);
    /// Any other file.
    virtual void file(const WalkFile &file);
    virtual void link(const WalkPlace &place, const QString &target);
    /// Neither file nor folder nor link.
    virtual void special(const WalkPlace &place);
    virtual void unreadable(const WalkPlace &place, const QString &reason);
    /// An archive that is about to be entered: its contents follow, and then `leaveArchive`.
    virtual void enterArchive(const WalkFile &file);
    virtual void leaveArchive(const WalkFile &file);
    /// An archive that is not looked into, since it lies in too many others.
    virtual void tooDeep(const WalkFile &file);
    /// An archive that cannot be read to its end.
    virtual void damagedArchive(const WalkFile &file, const QString &reason);
};

/// The longest path that macOS has, in bytes: PATH_MAX of Apple's <sys/syslimits.h> without the byte that
/// ends a text.
inline constexpr qsizetype longestPath = 1023;
/// What is said of a path of more bytes than that.
[[nodiscard]] QString tooLongText(qsizetype length);

/// How many archives may lie in one another.
inline constexpr int deepestArchive = 4;

/// Walks over a folder, or over one file, and over the archives in it. Reads regular files only, follows no
/// link, and changes nothing but temporary files elsewhere; the times of last access are left alone where the
/// system allows it. Folders deeper than paths can be are told as unreadable. Any thread.
void walkContents(const QString &item, UnpackBudget &budget, WalkVisitor &visitor);

} // namespace toolchain::review
