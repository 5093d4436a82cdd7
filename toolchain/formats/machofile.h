#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace toolchain {

/// What the header of a Mach-O file tells: the names of its architectures in the file's order, such as
/// "x86_64" and "arm64". A universal file has any number of them, a thin file has one.
struct MachOFile {
    std::vector<std::string> architectures;
    bool isUniversal = false;

    /// "Mach-O thin (arm64)" or "Mach-O universal (x86_64 arm64)".
    [[nodiscard]] std::string description() const;
};

/// Reads the header of a thin (32 or 64 bits, either byte order) or universal (32 or 64 bits) file and
/// the headers of a universal file's slices. Answers nothing for any other file, for one whose header is
/// cut short or whose slices lie outside of it, and for one that cannot be read. A link is followed.
/// Format: Apple's <mach-o/loader.h> and <mach-o/fat.h>.
[[nodiscard]] std::optional<MachOFile> readMachOFile(const std::filesystem::path &path);

} // namespace toolchain
