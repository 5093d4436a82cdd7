#pragma once

#include "codesign/signingorder.h"

#include <QString>

#include "platform/result.h"

namespace toolchain::codesign {

/// What became of an item.
struct SigningReport {
    platform::Outcome outcome; ///< an error has codesign's words, without the item's path
    QString notice; ///< "replacing existing signature", or nothing
    QString done; ///< "signed bundle with … [identifier]"
};

/// Signs a Mach-O file, a bundle, a disk image or any other file; with --deep what is nested in it first.
/// Where it fails, the item itself is as it was. One at a time in a process.
[[nodiscard]] SigningReport signItem(const QString &path, const SigningOrder &order);

/// Takes an item's signature away. An error has codesign's words, without the item's path.
[[nodiscard]] platform::Outcome removeSignature(const QString &path);

} // namespace toolchain::codesign
