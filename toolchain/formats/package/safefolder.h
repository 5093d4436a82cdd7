#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

#include <memory>

namespace toolchain::package {

/// A new folder that a foreign archive is unpacked into. Nothing is written outside of it: no path leads out,
/// no link on the way is followed, no link that leads out is made. It grows under another name beside its
/// place, and is removed if it is not finished. Paths are bytes relative to it; the folders on the way are
/// made. One thread.
class SafeFolder {
public:
    /// Fails if something is at the place already.
    [[nodiscard]] static platform::Result<std::shared_ptr<SafeFolder>> create(const QString &place);
    ~SafeFolder();
    SafeFolder(const SafeFolder &) = delete;
    SafeFolder &operator=(const SafeFolder &) = delete;

    [[nodiscard]] platform::Outcome makeFolder(const QByteArray &path, quint32 mode);

    /// Begins a file of `size` bytes; one that is there already, and one that the file system has no room
    /// for, is a failure. The one before is closed.
    [[nodiscard]] platform::Outcome beginFile(const QByteArray &path, quint32 mode, quint64 size);
    [[nodiscard]] platform::Outcome write(QByteArrayView bytes);
    [[nodiscard]] platform::Outcome makeLink(const QByteArray &path, const QByteArray &target);

    /// Moves the folder to its place; fails if something has come there.
    [[nodiscard]] platform::Outcome finish();

private:
    SafeFolder(QByteArray place, QByteArray building, int descriptor);
    [[nodiscard]] platform::Result<int> folderFor(const QByteArray &path);
    [[nodiscard]] platform::Error failure(const QByteArray &path, int error) const;
    [[nodiscard]] platform::Error failure(const QByteArray &path, const QString &reason) const;
    void closeFile();

    const QByteArray m_place;
    const QByteArray m_building;
    const int m_descriptor;
    int m_file = -1;
    QByteArray m_filePath;
    bool m_isFinished = false;
};

} // namespace toolchain::package
