#include "formats/udif/chunkpacking.h"

#include <bzlib.h>
#include <lzma.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace toolchain::udif {

namespace {

constexpr qsizetype kibibyte = 1024;
constexpr int allThreads = 16;
constexpr int someThreads = 6; ///< each with some megabytes of its own

using Support = ImageFormat::Support;

constexpr std::array formats{
    ImageFormat{rawChunk, "UDRO", "UDIF read-only", 256 * kibibyte, Support::readingAndMaking, allThreads},
    ImageFormat{adcChunk, "UDCO", "UDIF read-only compressed (ADC)", 256 * kibibyte, Support::reading,
                allThreads},
    ImageFormat{zlibChunk, "UDZO", "UDIF read-only compressed (zlib)", 256 * kibibyte,
                Support::readingAndMaking, allThreads},
    ImageFormat{bzip2Chunk, "UDBZ", "UDIF read-only compressed (bzip2)", 512 * kibibyte,
                Support::readingAndMaking, someThreads},
    ImageFormat{lzfseChunk, "ULFO", "UDIF read-only compressed (lzfse)", 256 * kibibyte, Support::reading,
                allThreads},
    ImageFormat{xzChunk, "ULMO", "UDIF read-only compressed (lzma)", 1024 * kibibyte,
                Support::readingAndMaking, someThreads},
};

const std::uint8_t *bytesOf(QByteArrayView bytes)
{
    return reinterpret_cast<const std::uint8_t *>(bytes.data());
}

std::uint8_t *bytesOf(QByteArray &bytes)
{
    return reinterpret_cast<std::uint8_t *>(bytes.data());
}

QByteArray packedByZlib(QByteArrayView bytes, QByteArray target, int level)
{
    auto length = uLongf(target.size());
    const int result = compress2(bytesOf(target), &length, bytesOf(bytes), uLong(bytes.size()), level);
    target.truncate(result == Z_OK ? qsizetype(length) : 0);
    return target;
}

QByteArray packedByBzip2(QByteArrayView bytes, QByteArray target, int level)
{
    auto length = unsigned(target.size());
    auto *source = const_cast<char *>(bytes.data()); // the library does not write to it
    const int result =
        BZ2_bzBuffToBuffCompress(target.data(), &length, source, unsigned(bytes.size()), level, 0, 0);
    target.truncate(result == BZ_OK ? qsizetype(length) : 0);
    return target;
}

/// An XZ stream with a dictionary of the chunk's size. It has no checksum, since the image has some of its
/// own.
QByteArray packedByXz(QByteArrayView bytes, QByteArray target)
{
    lzma_options_lzma options = {};
    lzma_lzma_preset(&options, LZMA_PRESET_DEFAULT);
    options.dict_size = std::max<std::uint32_t>(LZMA_DICT_SIZE_MIN, std::uint32_t(bytes.size()));
    const std::array filters{lzma_filter{LZMA_FILTER_LZMA2, &options},
                             lzma_filter{LZMA_VLI_UNKNOWN, nullptr}};
    std::size_t length = 0;
    auto *chain = const_cast<lzma_filter *>(filters.data()); // older headers of the library lack the const
    const lzma_ret result =
        lzma_stream_buffer_encode(chain, LZMA_CHECK_NONE, nullptr, bytesOf(bytes), std::size_t(bytes.size()),
                                  bytesOf(target), &length, std::size_t(target.size()));
    target.truncate(result == LZMA_OK ? qsizetype(length) : 0);
    return target;
}

bool unpackByZlib(QByteArrayView stored, QByteArray &target)
{
    auto length = uLongf(target.size());
    return uncompress(bytesOf(target), &length, bytesOf(stored), uLong(stored.size())) == Z_OK
        && qsizetype(length) == target.size();
}

bool unpackByBzip2(QByteArrayView stored, QByteArray &target)
{
    auto length = unsigned(target.size());
    auto *source = const_cast<char *>(stored.data()); // the library does not write to it
    return BZ2_bzBuffToBuffDecompress(target.data(), &length, source, unsigned(stored.size()), 0, 0) == BZ_OK
        && qsizetype(length) == target.size();
}

bool unpackByXz(QByteArrayView stored, QByteArray &target)
{
    std::uint64_t mostMemory = 96 << 20; // what a dictionary of 64 MiB takes; no chunk is as long
    std::size_t taken = 0;
    std::size_t length = 0;
    return lzma_stream_buffer_decode(&mostMemory, 0, nullptr, bytesOf(stored), &taken,
                                     std::size_t(stored.size()), bytesOf(target), &length,
                                     std::size_t(target.size()))
        == LZMA_OK
        && qsizetype(length) == target.size();
}

/// Apple Data Compression: bytes as they are, or short and long repetitions of what came before.
bool unpackByAdc(QByteArrayView stored, QByteArray &target)
{
    const std::uint8_t *in = bytesOf(stored);
    const std::uint8_t *const end = in + stored.size();
    qsizetype done = 0;
    while (in != end && done < target.size()) {
        const unsigned code = *in++;
        const bool isPlain = (code & 0x80) != 0;
        const bool isLong = !isPlain && (code & 0x40) != 0;
        const qsizetype length = isPlain ? (code & 0x7f) + 1 : isLong ? (code & 0x3f) + 4 : (code >> 2) + 3;
        const qsizetype needed = isPlain ? length : isLong ? 2 : 1;
        if (end - in < needed || target.size() - done < length)
            return false;
        if (isPlain) {
            std::copy_n(in, length, bytesOf(target) + done);
        } else {
            const qsizetype distance = isLong ? (in[0] << 8 | in[1]) + 1 : ((code & 3) << 8 | in[0]) + 1;
            if (distance > done)
                return false;
            for (qsizetype place = done; place < done + length; ++place)
                target[place] = target[place - distance];
        }
        in += needed;
        done += length;
    }
    return done == target.size();
}

} // namespace

std::optional<ImageFormat> imageFormat(const QString &name)
{
    const auto format = std::find_if(formats.begin(), formats.end(), [&name](const ImageFormat &known) {
        return QLatin1StringView(known.name) == name;
    });
    return format == formats.end() ? std::nullopt : std::optional(*format);
}

ImageFormat imageFormatOf(quint32 chunkKind)
{
    const auto format = std::find_if(formats.begin(), formats.end(), [chunkKind](const ImageFormat &known) {
        return known.chunkKind == chunkKind;
    });
    return format == formats.end() ? formats.front() : *format;
}

QString formatsMade()
{
    return u"UDZO, UDBZ, ULMO and UDRO"_s;
}

QByteArray packedChunk(quint32 chunkKind, QByteArrayView bytes, int level)
{
    if (chunkKind == rawChunk || bytes.size() < 2)
        return {};
    QByteArray target(bytes.size() - 1, Qt::Uninitialized);
    switch (chunkKind) {
    case zlibChunk:
        return packedByZlib(bytes, std::move(target), level);
    case bzip2Chunk:
        return packedByBzip2(bytes, std::move(target), level);
    case xzChunk:
        return packedByXz(bytes, std::move(target));
    default:
        return {};
    }
}

bool canUnpack(quint32 chunkKind)
{
    return chunkKind == zlibChunk || chunkKind == bzip2Chunk || chunkKind == xzChunk || chunkKind == adcChunk;
}

std::optional<QByteArray> unpackedChunk(quint32 chunkKind, QByteArrayView stored, qsizetype size)
{
    QByteArray target(size, Qt::Uninitialized);
    const bool isUnpacked = chunkKind == zlibChunk ? unpackByZlib(stored, target)
        : chunkKind == bzip2Chunk                  ? unpackByBzip2(stored, target)
        : chunkKind == xzChunk                     ? unpackByXz(stored, target)
                                                   : chunkKind == adcChunk && unpackByAdc(stored, target);
    return isUnpacked ? std::optional(std::move(target)) : std::nullopt;
}

} // namespace toolchain::udif
