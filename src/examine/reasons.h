#pragma once

#include "signing/scandecisions.h"

#include <QString>

namespace sealwright::examine {

/// Why a run does not hand something to codesign.
enum class Unsigned {
    isPackage, ///< productsign signs it
    liesInArchive,
    isDropped, ///< the item takes its place
    onlyItemIsSigned,
    isSkipped,
    isHidden,
    isCurrentVersion,
    isNoVersionFolder,
    hasFixedName, ///< PkgInfo or CodeResources
    isLeftover,
    isText, ///< by its extension
    isIrregular,
    liesInFlatFramework,
    isArchive,
    hasNoExecutable, ///< a bundle
    isForOtherProcessors,
    isNotExecutable,
    isSignedWithParent,
};

[[nodiscard]] Unsigned unsignedBecause(PassedOver reason);
/// The end of the sentence "It …".
[[nodiscard]] QString text(Unsigned reason);
/// What to do about code that is left unsigned for the reason; empty where the rule's own advice is better.
[[nodiscard]] QString advice(Unsigned reason);

} // namespace sealwright::examine
