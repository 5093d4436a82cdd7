#pragma once

#include <QJsonArray>
#include <QString>

class QTreeWidget;

namespace sealwright {

/// The names of what is compared.
struct Compared {
    QString old; ///< the folder or the item that is taken for the earlier one
    QString item; ///< the other one
};

/// Shows at the top of a tree of two columns in what two items differ, as docs/scripting.md describes it, in
/// place of what was shown before. Entries carry their paths, from the item, under Qt::UserRole.
void showDifferences(QTreeWidget &tree, const Compared &compared, const QJsonArray &differences);

} // namespace sealwright
