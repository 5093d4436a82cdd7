#pragma once

#include "platform/result.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace sealwright::examine {

enum class Packing { zip, diskImage };

/// What a run would be made with, as far as it changes what becomes of an item.
struct Choices {
    QVariantMap entitlements;
    QString entitlementsError; ///< why there are none to be had, which stops a run; empty if there are
    QStringList skipPaths; ///< from the item
    bool signsMainItemOnly = false;
    Packing packing = Packing::zip;
    bool signsDeep = false; ///< nested code is signed as a part of the bundle around it
    bool replacesSignatures = true; ///< those that are there; else what bears one stops the run
    QString team; ///< of the identity; empty if it is not known
    QString fileTool; ///< of the tool root; empty for the host's own
    bool countsSize = false; ///< whether the item's size and what it calls itself are to be told too
};

/// Reads the JSON form, in which every key may be missing. The error says what is wrong with it.
[[nodiscard]] platform::Result<Choices> choicesFromJson(const QByteArray &json);
[[nodiscard]] QByteArray toJson(const Choices &choices);

} // namespace sealwright::examine
