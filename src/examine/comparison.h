#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QString>

namespace sealwright::examine {

/// One thing in which two items differ.
struct Difference {
    QString path; ///< from the item
    QString what; ///< added, removed, architectures, entitlements, minimumSystem, sdk, identifier, version,
                  ///< signature, size
    QJsonValue old; ///< null for what was not there
    QJsonValue recent; ///< null for what is gone
};

/// Compares the code of two items, which may be of different kinds, and their sizes. A folder that a run has
/// left is taken for the item in it. The error says which of the two cannot be looked at.
[[nodiscard]] platform::Result<QList<Difference>> compareItems(const QString &old, const QString &recent);

[[nodiscard]] QByteArray toJson(const QList<Difference> &differences);

} // namespace sealwright::examine
