#pragma once

#include "formats/review/codefacts.h"

namespace toolchain::review {

/// What the service objects to in code.
enum class Objection {
    damaged, ///< the file cannot be read
    notSigned,
    invalid, ///< the signature does not verify
    notDeveloperId,
    noTimestamp,
    noRuntime,
    getTaskAllow,
    oldSdk
};

/// The service's sentence. Public document: Apple's "Resolving common notarization issues".
[[nodiscard]] QString message(Objection objection);

/// The page of that document that tells what to do; empty if there is none.
[[nodiscard]] QString documentUrl(Objection objection);

/// What speaks against a slice with the signature that it has, in the service's order. Does not verify the
/// signature.
[[nodiscard]] QList<Objection> objectionsTo(const SliceFacts &slice);

/// The same for a slice that will be signed with Developer ID, time stamp and hardened runtime before it is
/// sent.
[[nodiscard]] QList<Objection> objectionsOnceSigned(const SliceFacts &slice);

} // namespace toolchain::review
