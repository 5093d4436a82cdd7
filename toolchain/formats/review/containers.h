#pragma once

#include "formats/review/judge.h"

#include <optional>

namespace toolchain::review {

/// What a ticket names of a container.
struct ContainerHash {
    QByteArray bytes; ///< 20
    int type = 2; ///< 1 for SHA-1, as for the checksum of a package's table of contents; 2 for SHA-256
};

/// What the service finds in the signature of an image or of a package itself.
struct ContainerFacts {
    QList<Objection> objections;
    std::optional<ContainerHash> hash; ///< of a container that a ticket can name
};

/// Of a disk image; nothing for a file that is none. An image may do without a signature.
[[nodiscard]] ContainerFacts imageFacts(const QString &path, const TrustStore &store);

/// Of a flat package; nothing for a file that is none.
[[nodiscard]] ContainerFacts packageFacts(const QString &path);

/// Of a container that lies in another one, which may do without a signature of its own.
[[nodiscard]] ContainerFacts nestedFacts(const QString &path, const TrustStore &store);

} // namespace toolchain::review
