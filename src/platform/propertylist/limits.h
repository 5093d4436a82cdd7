#pragma once

#include "platform/result.h"

/// What a property list may cost. A few hundred bytes can ask for any amount of memory (shared references,
/// nesting), so every reader is held to the same bounds.
namespace platform::propertylist {

inline constexpr qint64 mebibyte = 1024LL * 1024;

/// Containers inside containers; the readers recurse once a level.
inline constexpr int maximumDepth = 512;
/// Values and keys together, a shared one counted each time that it is referred to.
inline constexpr qint64 maximumObjects = 1'000'000;
/// Bytes of the file.
inline constexpr qint64 maximumInputBytes = 64 * mebibyte;
/// Bytes of all strings (UTF-16) and data, shared ones counted as above.
inline constexpr qint64 maximumExpandedBytes = 256 * mebibyte;

/// Keeps the account of one list while it is read.
class Budget {
public:
    /// Takes one object with so many bytes of contents. Fails beyond the bounds, with the reason to stop.
    [[nodiscard]] Outcome take(qint64 contentBytes = 0)
    {
        m_bytes += contentBytes;
        if (++m_objects > maximumObjects)
            return Error{QStringLiteral("the list holds more than %1 objects").arg(maximumObjects)};
        if (m_bytes > maximumExpandedBytes)
            return Error{
                QStringLiteral("the list expands to more than %1 MiB").arg(maximumExpandedBytes / mebibyte)};
        return {};
    }

    /// Fails for a depth beyond the bounds, with the reason to stop.
    [[nodiscard]] static Outcome checkDepth(int depth)
    {
        if (depth > maximumDepth)
            return Error{QStringLiteral("the list is nested deeper than %1 levels").arg(maximumDepth)};
        return {};
    }

private:
    qint64 m_objects = 0;
    qint64 m_bytes = 0;
};

} // namespace platform::propertylist
