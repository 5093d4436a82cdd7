#pragma once

#include "formats/hfsplus/hfsplussource.h"

namespace toolchain::hfsplus {

/// Finds the files that have more than one name in the tree, and adds for each a file with the bytes, in a
/// folder of the volume's own that is added too: the names become links to it. `folder` is what that folder
/// is like. Format: Apple Technical Note TN1150, "Hard Links"; the chain of links as bsd/hfs/hfs_format.h of
/// Apple's published kernel sources has it.
void joinHardLinks(std::vector<SourceItem> &items, const struct stat &folder);

} // namespace toolchain::hfsplus
