#pragma once

#include <QByteArray>
#include <QList>

namespace toolchain {

/// Apple's certificates that come with the program, in DER form; `anchors/README.md` tells where they are
/// from.

/// The roots that Apple's certificates for developers and time stamps rest on.
[[nodiscard]] const QList<QByteArray> &appleRoots();

/// The intermediate certificates, so that a leaf alone gives the whole chain.
[[nodiscard]] const QList<QByteArray> &appleIntermediates();

/// What Apple's tickets rest on.
[[nodiscard]] const QList<QByteArray> &appleTicketAnchors();

} // namespace toolchain
