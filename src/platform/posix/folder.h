#pragma once

#include <QByteArray>
#include <QString>

#include <dirent.h>
#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// An entry, named relative to an open folder; or by its path, with AT_FDCWD for the folder.
struct Place {
    int folder;
    const char *name;
};

/// Whether opening a folder goes through a link to one.
enum class Links { follow, refuse };

/// A folder open for reading. Failures are told in errno.
class Folder {
public:
    struct Entry {
        std::string name;
        ino_t inode;
        mode_t format; ///< S_IFDIR and so on; 0 where the file system does not tell
    };

    Folder(Place place, Links links);

    explicit operator bool() const { return m_stream != nullptr; }
    int descriptor() const { return dirfd(m_stream.get()); }

    /// All entries but "." and "..", in the order in which the file system lists them; nothing on failure.
    [[nodiscard]] std::optional<std::vector<Entry>> entries() const;

private:
    struct Closer {
        void operator()(DIR *stream) const { closedir(stream); }
    };

    std::unique_ptr<DIR, Closer> m_stream;
};

/// The path of the entry that a walk is at, for error texts.
class Trail {
public:
    explicit Trail(QByteArray path)
        : m_path(std::move(path))
    {
    }

    void enter(const char *name) { m_path.append('/').append(name); }
    void leave() { m_path.truncate(m_path.lastIndexOf('/')); }
    /// In bytes.
    qsizetype length() const { return m_path.size(); }
    QString path() const;

private:
    QByteArray m_path;
};

} // namespace platform
