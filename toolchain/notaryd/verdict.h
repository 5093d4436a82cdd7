#pragma once

#include "formats/notaryrequest.h"

namespace notaryd {

/// Reviews an upload that is whole and writes what was found into its request.
void decide(toolchain::NotaryRequest &request, const QString &path);

} // namespace notaryd
