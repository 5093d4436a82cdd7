#pragma once

#include <QString>

namespace examine {

enum class LinkTarget {
    good,
    nowhere, ///< there is nothing
    outside ///< of the item, and not where every Mac has the same
};

/// Judges a link of an item by its text. `path` is the link's, from the item.
[[nodiscard]] LinkTarget judgeLink(const QString &item, const QString &path, const QString &target);

} // namespace examine
