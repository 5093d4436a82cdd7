#pragma once

#include "platform/result.h"

#include <functional>

namespace platform {
class FileService;
}

/// Where the things of a run lie. Paths.
struct Places {
    QString original; ///< the item that the user chose
    QString fileName; ///< its last component, which the folder is named for
    QString item; ///< what is worked on: the copy in the working folder, or the item itself
    QString upload; ///< the file that is uploaded; null until there is one
};

/// The folder beside the item in which a run works, from its making to its last name, and the item's way into
/// it. Worker thread.
class RunFolder {
public:
    /// Whoever keeps the places as well is told each time that one changes.
    using Moved = std::function<void(const Places &)>;

    RunFolder(platform::FileService &files, Places places, Moved moved)
        : m_files(files)
        , m_places(std::move(places))
        , m_moved(std::move(moved))
    {
    }

    const Places &places() const { return m_places; }
    /// The folder that the item lies in.
    QString path() const;
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

    /// Makes the folder, empty. What an earlier run has left under its name goes.
    platform::Outcome remove();
    platform::Outcome create();
    platform::Outcome empty();
    /// Copies the original to the item's place.
    platform::Outcome copyOriginal();

    /// Gives the folder its next name. What has that name goes to the trash, or where there is none, gets
    /// " - old" behind its name. Nothing is reported, and the places are the new ones in any case.
    void renameTo(QStringView suffix);
    /// Puts the user's untouched item into the folder, after a success. Nothing is reported.
    void moveOriginalIn();

    /// Deletes the file that is uploaded, unless it is the item itself.
    void removeUpload();
    void removeItem();

private:
    QString folderNamed(const QString &beside, QStringView suffix) const;
    void putAway(const QString &earlier);
    void tell() { m_moved(m_places); }

    platform::FileService &m_files;
    Places m_places;
    const Moved m_moved;
};
