#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace toolchain {

enum class LastLink {
    refused, ///< a symbolic link is not opened
    followed
};

/// A file that is open for reading as long as this lives. Opening a pipe does not wait for a writer.
class OpenFile {
public:
    explicit OpenFile(const std::filesystem::path &path, LastLink link = LastLink::refused);
    ~OpenFile();
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    /// Below 0, with errno telling why, if the file could not be opened.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    const int m_descriptor;
};

/// Fills `size` bytes with those of an open file from `offset` on. False if it does not give them all, with
/// errno telling why; 0 if the file ends before.
[[nodiscard]] bool readFully(int file, std::uint64_t offset, char *target, std::ptrdiff_t size);

/// Writes all bytes where an open file stands. False, with errno telling why, if that fails.
[[nodiscard]] bool writeFully(int descriptor, std::string_view bytes);

} // namespace toolchain
