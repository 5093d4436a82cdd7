#pragma once

#include <QString>

namespace toolchain::spctl {

/// The kind of use that is asked about.
enum class Use { execute, open, install };

enum class Context {
    none,
    primarySignature ///< "context:primary-signature": what is opened is judged by its own signature
};

/// What is said of an item.
struct Assessment {
    bool isAccepted = false;
    QString source; ///< by which rule, in the words of the real program; or what speaks against it
    QString origin; ///< the common name of the signer; empty if there is none
    QString note; ///< what keeps a rejected item from being notarized, as far as it shows; may be empty
};

/// Judges an item by its digests, signature, chain, dates, time stamp and ticket. A ticket that is not
/// attached is asked for at the notary's service; where that cannot be reached, there is none.
[[nodiscard]] Assessment assess(const QString &path, Use use, Context context);

} // namespace toolchain::spctl
