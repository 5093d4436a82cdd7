#pragma once

#include "codesign/signingorder.h"

#include <QString>

namespace toolchain::codesign {

/// What became of an item.
struct SigningReport {
    QString error; ///< codesign's words, without the item's path; empty on success
    QString notice; ///< "replacing existing signature", or nothing
    QString done; ///< "signed bundle with … [identifier]"
};

/// Signs a Mach-O file, a bundle, a disk image or any other file; with --deep what is nested in it first.
/// Where it fails, the item itself is as it was. One at a time in a process.
[[nodiscard]] SigningReport signItem(const QString &path, const SigningOrder &order);

/// Takes an item's signature away. Answers what went wrong, without the item's path, or nothing.
[[nodiscard]] QString removeSignature(const QString &path);

} // namespace toolchain::codesign
