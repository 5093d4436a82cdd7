#pragma once

#include "run/item.h"

#include <QFileIconProvider>
#include <QHash>

namespace sealwright {

/// Has a panel show bundles, packages and disk images as what they are, and not as folders and archives. Made
/// on the main thread; the panel's reader asks on a thread of its own.
class ItemKinds : public QFileIconProvider {
public:
    ItemKinds();

    /// The one for all panels. It stays until the process ends: a panel's reader may outlive its panel.
    static ItemKinds &shared();

    QIcon icon(const QFileInfo &file) const override;
    QString type(const QFileInfo &file) const override;

private:
    QHash<QString, QIcon> m_icons; ///< by extension
};

} // namespace sealwright
