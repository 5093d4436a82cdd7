#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace toolchain::review {

enum class LinkTarget {
    good,
    nowhere, ///< there is nothing
    outside ///< of the item, and not where every Mac has the same
};

/// Judges a link of an item by its text. `path` is the link's, from the item.
[[nodiscard]] LinkTarget judgeLink(const QString &item, const QString &path, const QString &target);

/// Judges the links of bundles, which their seals vouch for. Bundles are told before what is in them. Paths
/// are absolute.
class BundleLinks {
public:
    void add(const QString &bundle);
    /// By the outermost bundle that the link lies in; nothing if it lies in none.
    [[nodiscard]] std::optional<LinkTarget> judge(const QString &link, const QString &target) const;

private:
    [[nodiscard]] QString bundleAround(const QString &path) const;

    QStringList m_outermost; ///< bundles that lie in no other
};

} // namespace toolchain::review
