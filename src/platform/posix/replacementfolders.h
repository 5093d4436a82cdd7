#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <mutex>
#include <optional>

namespace platform {

/// Folders to make the replacements of items in. Each lies among the temporary files of the host or the user,
/// where those are on the item's volume, and hidden beside the item otherwise, in a hidden folder of its own.
/// With this object they go. Any thread.
class ReplacementFolders {
public:
    ReplacementFolders() = default;
    ~ReplacementFolders();
    ReplacementFolders(const ReplacementFolders &) = delete;
    ReplacementFolders &operator=(const ReplacementFolders &) = delete;

    /// A new, private, empty one; nothing on failure, with the reason in errno.
    [[nodiscard]] std::optional<QString> makeFor(const QString &item);
    /// Removes those that were made, with what has been left in each or right beside it.
    void removeAll();

private:
    std::mutex m_mutex;
    QList<QByteArray> m_made;
};

} // namespace platform
