#pragma once

#include "codesign/signingorder.h"
#include "formats/codesignature/signaturereader.h"

namespace toolchain::codesign {

/// What is the same for all slices of an item.
struct ItemPlan {
    QString identifier;
    QList<codesignature::HashType> digests;
    QList<QByteArray> sealDigests; ///< of CodeResources, one for each of `digests`; empty: there is no seal
};

/// Digests as the order tells them, else as the item's oldest system needs them.
[[nodiscard]] QList<codesignature::HashType> digestsFor(const codesignature::SignedCode &code,
                                                        const SigningOrder &order);

/// The identifier as the order tells it, else the old one if that is kept, else by the item.
[[nodiscard]] QString chosenIdentifier(const codesignature::SignedCode &code, const SigningOrder &order);

/// All that a slice's signature is to consist of; `part` counts the item's parts. The error is for a person.
[[nodiscard]] platform::Result<codesignature::SignaturePlan> planFor(const codesignature::SignedCode &code,
                                                                     qsizetype part,
                                                                     const SigningOrder &order,
                                                                     const ItemPlan &item);

} // namespace toolchain::codesign
