#pragma once

#include "formats/codesignature/cms.h"

namespace toolchain {

/// What `--timestamp` asks for.
struct TimestampChoice {
    enum class Kind {
        none,
        service, ///< the authority of the notary service's settings
        address ///< of its own
    };
    Kind kind = Kind::service;
    QString address; ///< for Address
};

/// "none", an address, or an empty text.
[[nodiscard]] TimestampChoice timestampChoice(const QString &value);

/// A stamper for packages whose checksums are of this kind; an empty one for None. Starts the service of this
/// machine where that is meant and it does not run.
[[nodiscard]] platform::Result<Stamper> stamperFor(const TimestampChoice &choice,
                                                   QCryptographicHash::Algorithm imprint);

} // namespace toolchain
