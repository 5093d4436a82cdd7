#pragma once

#include "examine/bundlereading.h"
#include "examine/choices.h"
#include "platform/fileservice.h"
#include "signing/scandecisions.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace sealwright::examine {

enum class ItemKind { app, plugin, fmplugin, package, diskImage, folder };

/// What a run would hand to codesign. Paths are absolute.
struct Prediction {
    QStringList order; ///< everything, in the order of the run, the item itself last if it is signed
    QHash<QString, PassedOver> passedOver;
    QSet<QString> mainExecutables; ///< of bundles, which are signed with them
    QStringList unsignedMembers; ///< found, and left out since only the item itself is to be signed
    QSet<QString> signedWithParents; ///< by codesign, as nested code of what the run hands to it
    std::map<QString, ReadBundle> bundles; ///< those of the order, and of the set before
    QString droppedMember; ///< found last, and left out in the place of the item; empty if there is none
};

/// Has the scanner of a run decide, and changes nothing.
[[nodiscard]] Prediction predict(const QString &item, ItemKind kind, const Choices &choices,
                                 const platform::FileService &files);

} // namespace sealwright::examine
