#pragma once

#include "codesign/options.h"

namespace toolchain::codesign {

/// Signs all paths until one cannot be; 0, 1 for a failure, 2 for options that mean nothing.
[[nodiscard]] int runSign(const Options &options);

/// Takes the signatures of all paths away.
[[nodiscard]] int runRemoveSignature(const Options &options);

/// Complains about the command line on standard error; 2.
[[nodiscard]] int refuse(const QString &complaint);

/// "PATH: TEXT" on standard error; 1.
int fail(const QString &path, const QString &text);

} // namespace toolchain::codesign
