#pragma once

#include "codesign/options.h"
#include "codesign/signingorder.h"

namespace toolchain::codesign {

/// Why options make no order.
struct OrderProblem {
    QString subject; ///< the file or identity that is meant; empty: the command line itself
    QString text; ///< empty: there is none

    [[nodiscard]] bool isNone() const { return text.isEmpty(); }
};

/// Fills an order in as the options say, all but the signer; reads the files that they name.
[[nodiscard]] OrderProblem fillOrder(SigningOrder &order, const Options &options);

/// The text of a requirement or a set of them: behind "=" itself, else the content of the file that is named.
/// The error begins with the file's name.
[[nodiscard]] platform::Result<QByteArray> requirementSource(const QString &argument);

/// One requirement as a blob, out of a text or of a file that holds a text or a blob.
[[nodiscard]] platform::Result<QByteArray> requirementFrom(const QString &argument);

} // namespace toolchain::codesign
