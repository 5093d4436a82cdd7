#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace toolchain {

/// A file that grows without a name and gets one in an open folder when it is whole, in place of what was
/// called so. A process that is ended before leaves nothing. Where the file system knows no files without a
/// name, it grows under a hidden one.
class NewFile {
public:
    /// `folder` is the descriptor of the folder; it stays open as long as this lives.
    NewFile(int folder, std::string name);
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    /// Below 0, with errno telling why, if the file could not be made.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Adds bytes at the end. False, with errno telling why, if that fails.
    [[nodiscard]] bool write(std::string_view bytes) const;

    /// Gives the file its name. False, with errno telling why, if that fails.
    [[nodiscard]] bool finish();

private:
    [[nodiscard]] bool nameIt(const char *name) const;

    const int m_folder;
    const std::string m_name;
    std::string m_hiddenName; ///< under which it lies now; empty for none
    int m_descriptor = -1;
};

} // namespace toolchain
