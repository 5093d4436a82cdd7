#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace toolchain {

/// A file that appears under its path only when it is whole. Until then it grows in a hidden file beside
/// it, which is gone afterwards in every case, also when SIGTERM, SIGINT or SIGHUP ends the process (of
/// several at once, the one that was made first). What was under the path before is replaced; a symbolic
/// link is replaced too, and not followed. Any thread.
class WholeFile {
public:
    explicit WholeFile(std::filesystem::path destination);
    /// The same with a name of the unfinished file that others know; what an ended run has left there is
    /// replaced.
    WholeFile(std::filesystem::path destination, std::string unfinished);
    ~WholeFile();
    WholeFile(const WholeFile &) = delete;
    WholeFile &operator=(const WholeFile &) = delete;

    /// Open for writing; below 0, with errno telling why, if the file could not be made.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Adds bytes at the end. False, with errno telling why, if that fails, or if the file was never made.
    [[nodiscard]] bool write(std::string_view bytes);

    /// Adds the first `length` bytes of an open file, shared where the file system can share them. False,
    /// with errno telling why, if that fails; EIO if the file is shorter.
    [[nodiscard]] bool append(int source, std::uint64_t length);

    /// Gives the file the mode and the extended attributes of an open one, which it is to replace. An
    /// attribute that may not be set is passed over. False, with errno telling why, if that fails.
    [[nodiscard]] bool takeAfter(int original);

    /// Nobody but its owner is to read the file, whatever the process's mask is.
    void keepPrivate() { m_mode = 0600; }

    /// Moves the file to its path, with the mode that the process's mask gives new files unless it has got
    /// another. False, with errno telling why, if that fails.
    [[nodiscard]] bool finish();

private:
    [[nodiscard]] bool appendByHand(int source, off_t offset, std::uint64_t length);

    const std::filesystem::path m_destination;
    std::string m_path;
    bool m_removedBySignals = false;
    const int m_descriptor;
    std::optional<mode_t> m_mode;
    bool m_finished = false;
};

/// Who may read a new file.
enum class Readers {
    asTheMaskSays,
    ownerAlone,
};

/// Writes a whole file at once. Answers what went wrong, naming the file, or nothing.
[[nodiscard]] std::string writeWholeFile(const std::filesystem::path &path, std::string_view bytes,
                                         Readers readers = Readers::asTheMaskSays);

/// "PATH: what the system says about the error number".
[[nodiscard]] std::string systemError(const std::filesystem::path &path, int error);

} // namespace toolchain
