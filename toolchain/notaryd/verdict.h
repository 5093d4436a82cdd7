#pragma once

#include "formats/notaryrequest.h"

namespace notaryd {

/// Reviews an upload that is whole and writes what was found into its request. By a process of its own,
/// which may write nothing but temporary files: whatever becomes of it, the service goes on.
void decide(toolchain::NotaryRequest &request, const QString &path);

/// The option by which that process knows what it is for; the upload's path follows.
inline constexpr const char *reviewOption = "--review";

/// What that process does: reads the request from standard input, prints it as decided. Answers the exit
/// status.
[[nodiscard]] int reviewAlone(const QString &path);

} // namespace notaryd
