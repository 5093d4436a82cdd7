#pragma once

#include "formats/hfsplus/hfsplusreader.h"

#include <filesystem>

namespace toolchain {

/// Lays the files of a volume into an empty folder: folders, files, symbolic links, modes and the times of
/// last change, hard links, extended attributes and resource forks, as fileattributes.h has them. Files that
/// would run with other rights than their user's lose that right; owners stay behind. Answers what went
/// wrong, naming the file; the folder is not cleaned up then.
[[nodiscard]] platform::Outcome copyVolume(const HfsPlusReader &volume, const std::filesystem::path &folder);

} // namespace toolchain
