#pragma once

#include "platform/result.h"
#include "support/wholefile.h"

#include <QByteArrayView>

#include <cerrno>
#include <cstring>

namespace toolchain {

/// What the system says about errno.
[[nodiscard]] inline platform::Error lastSystemError()
{
    return {QString::fromLocal8Bit(std::strerror(errno))};
}

/// "PATH: what the system says about the error number".
[[nodiscard]] inline platform::Error systemFailure(const std::filesystem::path &path, int error)
{
    return {QString::fromStdString(systemError(path, error))};
}

/// "PATH: REASON".
[[nodiscard]] inline platform::Error failureOf(const std::filesystem::path &path, const std::string &reason)
{
    return {QString::fromStdString(path.string() + ": " + reason)};
}

/// Writes a whole file at once. An error names the file.
[[nodiscard]] inline platform::Outcome writeFileAt(const std::filesystem::path &path, QByteArrayView bytes,
                                                   Readers readers = Readers::asTheMaskSays)
{
    const std::string error = writeWholeFile(path, {bytes.data(), std::size_t(bytes.size())}, readers);
    return error.empty() ? platform::Outcome() : platform::Error{QString::fromStdString(error)};
}

} // namespace toolchain
