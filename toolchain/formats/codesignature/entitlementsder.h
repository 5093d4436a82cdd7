#pragma once

#include <QByteArray>
#include <QVariantMap>

#include "platform/result.h"

namespace toolchain::codesignature {

/// The entitlements in the form that newer systems read: ASN.1 DER, dictionaries sorted by the bytes of their
/// keys. The error names the key whose value has a kind that the form does not know.
[[nodiscard]] platform::Result<QByteArray> entitlementsAsDer(const QVariantMap &entitlements);

/// Reads that form back, and the one that codesign of macOS 11 wrote: a SET of the pairs, without a version.
/// Depth and lengths are bounded.
[[nodiscard]] platform::Result<QVariantMap> entitlementsFromDer(QByteArrayView der);

/// The dictionary of an entitlements file; what stands behind the list's end counts for nothing, as on macOS.
/// The error is for a person.
[[nodiscard]] platform::Result<QVariantMap> readEntitlements(const QByteArray &propertyList);

/// Bits of execSegFlags that a main executable's entitlements ask for.
[[nodiscard]] quint64 execSegmentFlagsFor(const QVariantMap &entitlements);

} // namespace toolchain::codesignature
