#include "formats/hfsplus/compressedfile.h"

#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <optional>

namespace toolchain::hfsplus {

namespace {

constexpr qsizetype headerSize = 16;
constexpr quint32 plainInAttribute = 1;
constexpr quint32 zlibInAttribute = 3;
constexpr quint32 zlibInFork = 4;
constexpr quint64 blockSize = 64 << 10; ///< bytes of the file in a block of the fork
constexpr quint32 longestBlock = 2 * blockSize; ///< as it is stored

template <typename Number>
Number numberAt(QByteArrayView bytes, qsizetype offset)
{
    return offset + qsizetype(sizeof(Number)) <= bytes.size()
        ? qFromLittleEndian<Number>(bytes.data() + offset)
        : 0;
}

quint32 kindOf(QByteArrayView attribute)
{
    return attribute.startsWith("fpmc") ? numberAt<quint32>(attribute, 4) : 0;
}

/// Bytes that would not become shorter are stored with a first byte that no zlib stream begins with.
std::optional<QByteArray> unpacked(QByteArrayView stored, quint64 size)
{
    constexpr int storedMark = 0x0f;
    if (size > longestBlock || stored.isEmpty())
        return {};
    if ((stored.front() & storedMark) == storedMark)
        return quint64(stored.size() - 1) == size ? std::optional(stored.sliced(1).toByteArray())
                                                  : std::nullopt;
    QByteArray target(qsizetype(size), Qt::Uninitialized);
    auto length = uLongf(size);
    const int result = uncompress(reinterpret_cast<Bytef *>(target.data()), &length,
                                  reinterpret_cast<const Bytef *>(stored.data()), uLong(stored.size()));
    return result == Z_OK && length == size ? std::optional(target) : std::nullopt;
}

bool unpackAttribute(QByteArrayView attribute, const ByteSink &sink)
{
    const QByteArrayView stored = attribute.sliced(headerSize);
    if (unpackedSize(attribute) == 0)
        return true;
    if (kindOf(attribute) == plainInAttribute)
        return quint64(stored.size()) == unpackedSize(attribute) && sink(stored);
    const auto bytes = unpacked(stored, unpackedSize(attribute));
    return bytes && sink(*bytes);
}

/// The blocks' places stand in front of them, counted from behind the length of what follows the fork's
/// header.
bool unpackFork(quint64 size, const ByteSource &fork, quint64 forkSize, const ByteSink &sink)
{
    constexpr quint64 tableOffset = 0x104;
    constexpr quint64 entrySize = 8;
    const quint64 blockCount = (size + blockSize - 1) / blockSize;
    if (forkSize < tableOffset + 4 || blockCount > (forkSize - tableOffset) / entrySize)
        return false;
    for (quint64 block = 0; block < blockCount; ++block) {
        QByteArray entry(entrySize, '\0');
        if (!fork(tableOffset + 4 + block * entrySize, entry.data(), entry.size()))
            return false;
        const auto length = numberAt<quint32>(entry, 4);
        QByteArray stored(qsizetype(std::min(length, longestBlock)), Qt::Uninitialized);
        if (!fork(tableOffset + numberAt<quint32>(entry, 0), stored.data(), stored.size()))
            return false;
        const auto bytes = unpacked(stored, std::min(blockSize, size - block * blockSize));
        if (!bytes || !sink(*bytes))
            return false;
    }
    return true;
}

} // namespace

bool canUnpackCompressed(QByteArrayView attribute)
{
    const quint32 kind = kindOf(attribute);
    return attribute.size() >= headerSize
        && (kind == plainInAttribute || kind == zlibInAttribute || kind == zlibInFork);
}

quint64 unpackedSize(QByteArrayView attribute)
{
    return numberAt<quint64>(attribute, 8);
}

bool unpackCompressed(QByteArrayView attribute, const ByteSource &fork, quint64 forkSize,
                      const ByteSink &sink)
{
    if (!canUnpackCompressed(attribute))
        return false;
    return kindOf(attribute) == zlibInFork ? unpackFork(unpackedSize(attribute), fork, forkSize, sink)
                                           : unpackAttribute(attribute, sink);
}

} // namespace toolchain::hfsplus
