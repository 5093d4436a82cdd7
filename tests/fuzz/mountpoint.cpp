// The mount point of a disk image.

#include "fuzz/fuzzing.h"
#include "notarization/archivesteps.h"
#include "support/core.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString mountPoint = archive::mountPoint(toolOutput(data, size));
    require(mountPoint == mountPoint.trimmed() && !mountPoint.contains(u'\t'));
    return 0;
}
