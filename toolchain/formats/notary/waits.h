#pragma once

#include <chrono>

namespace toolchain::notary {

using Milliseconds = std::chrono::milliseconds;

/// SEALWRIGHT_WAIT_SCALE, 0 to 1: by how much tests shorten every wait. 1 where it is not set or no such
/// number.
[[nodiscard]] double waitScale();

/// A wait as this run has it.
[[nodiscard]] Milliseconds scaled(Milliseconds wait);

/// The same, but never so short that a busy machine would take for dead what is alive.
[[nodiscard]] Milliseconds scaledLimit(Milliseconds limit, Milliseconds least);

/// A wait with up to a quarter more or less, so that many clients do not come back together.
[[nodiscard]] Milliseconds spread(Milliseconds wait);

void sleepFor(Milliseconds wait);

} // namespace toolchain::notary
