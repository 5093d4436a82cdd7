#pragma once

#include <QByteArray>
#include <QVariantMap>

#include "platform/result.h"

namespace toolchain::codesignature {

/// The entitlements in the form that newer systems read: ASN.1 DER, dictionaries sorted by the bytes of their
/// keys. The error names the key whose value has a kind that the form does not know.
[[nodiscard]] platform::Result<QByteArray> entitlementsAsDer(const QVariantMap &entitlements);

/// Reads that form back. Depth and lengths are bounded.
[[nodiscard]] platform::Result<QVariantMap> entitlementsFromDer(QByteArrayView der);

/// The dictionary of an entitlements file. The error is for a person.
[[nodiscard]] platform::Result<QVariantMap> readEntitlements(const QByteArray &propertyList);

/// Bits of execSegFlags that a main executable's entitlements ask for.
[[nodiscard]] quint64 execSegmentFlagsFor(const QVariantMap &entitlements);

} // namespace toolchain::codesignature
