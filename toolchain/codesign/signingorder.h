#pragma once

#include "formats/codesignature/requirement.h"
#include "formats/codesignature/signatureplan.h"

#include <QString>
#include <QVariantMap>

#include <optional>
#include <set>

namespace toolchain::codesign {

/// Whoever signs.
struct Signer {
    QString team; ///< empty: none
    codesignature::SignerFacts facts; ///< no chain: ad hoc
    codesignature::CmsMaker makeCms; ///< none: ad hoc

    [[nodiscard]] bool isAdHoc() const { return !makeCms; }
};

/// What of an old signature is to be taken over, by the words of --preserve-metadata.
enum class Kept { identifier, entitlements, requirements, flags, runtime };

enum class OldSignature { isRefused, isReplaced };
enum class NestedCode { mustBeSigned, isSignedToo };

/// What codesign was told about a signature, for all its paths and what is nested in them alike.
struct SigningOrder {
    Signer signer;
    OldSignature oldSignature = OldSignature::isRefused;
    NestedCode nested = NestedCode::mustBeSigned;
    QString identifier; ///< empty: by the item
    QString prefix;
    std::optional<quint32> flags; ///< nothing: by the item
    std::optional<QByteArray> entitlements; ///< the file's bytes
    std::optional<codesignature::RequirementSet> requirements; ///< nothing: by the signer
    QList<codesignature::HashType> digests; ///< none: by the item
    std::set<Kept> kept;
    quint64 cmsRoom = codesignature::SignaturePlan::usualCmsRoom;
};

} // namespace toolchain::codesign
