#include "formats/machofile.h"

#include <array>
#include <cstdint>
#include <fstream>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

constexpr std::uint32_t thinMagic32 = 0xfeedface;
constexpr std::uint32_t thinMagic64 = 0xfeedfacf;
constexpr std::uint32_t fatMagic32 = 0xcafebabe;
constexpr std::uint32_t fatMagic64 = 0xcafebabf;

/// Class files of Java begin with the universal magic too, and have at least 45 in the next four bytes.
constexpr std::uint32_t mostSlices = 30;

constexpr std::uint32_t cpuIs64Bit = 0x01000000;
constexpr std::uint32_t cpuIs64BitWith32BitPointers = 0x02000000;
constexpr std::uint32_t subtypeMask = 0x00ffffff;

std::uint32_t swapped(std::uint32_t value)
{
    return __builtin_bswap32(value);
}

bool isThinMagic(std::uint32_t magic)
{
    return magic == thinMagic32 || magic == thinMagic64;
}

std::string architectureName(std::uint32_t cpu, std::uint32_t subtype)
{
    subtype &= subtypeMask;
    switch (cpu) {
    case 7:
        return "i386";
    case 7 | cpuIs64Bit:
        return subtype == 8 ? "x86_64h" : "x86_64";
    case 12:
        return "arm";
    case 12 | cpuIs64Bit:
        return subtype == 2 ? "arm64e" : "arm64";
    case 12 | cpuIs64BitWith32BitPointers:
        return "arm64_32";
    case 18:
        return "ppc";
    case 18 | cpuIs64Bit:
        return "ppc64";
    default:
        return "cpu " + std::to_string(cpu) + ":" + std::to_string(subtype);
    }
}

class Reader {
public:
    explicit Reader(const fs::path &path)
        : m_file(path, std::ios::binary)
    {
        m_file.seekg(0, std::ios::end);
        m_size = m_file ? static_cast<std::uint64_t>(m_file.tellg()) : 0;
    }

    /// The 32-bit number at an offset, in the byte order of a universal header.
    std::optional<std::uint32_t> bigEndian(std::uint64_t offset)
    {
        std::array<unsigned char, 4> bytes = {};
        if (offset > m_size || m_size - offset < bytes.size())
            return std::nullopt;
        m_file.seekg(static_cast<std::streamoff>(offset));
        m_file.read(reinterpret_cast<char *>(bytes.data()), bytes.size());
        if (!m_file)
            return std::nullopt;
        return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8
            | bytes[3];
    }

    /// The architecture of the thin file that begins at an offset and has a length in bytes.
    std::optional<std::string> thinArchitecture(std::uint64_t offset, std::uint64_t length)
    {
        const auto magic = bigEndian(offset);
        const auto cpu = bigEndian(offset + 4);
        const auto subtype = bigEndian(offset + 8);
        if (!magic || !cpu || !subtype || length > m_size - offset)
            return std::nullopt;
        const bool isLittleEndian = isThinMagic(swapped(*magic));
        const std::uint32_t ownMagic = isLittleEndian ? swapped(*magic) : *magic;
        const std::uint64_t headerLength = ownMagic == thinMagic64 ? 32 : 28;
        if (!isThinMagic(ownMagic) || length < headerLength)
            return std::nullopt;
        return isLittleEndian ? architectureName(swapped(*cpu), swapped(*subtype))
                              : architectureName(*cpu, *subtype);
    }

    [[nodiscard]] std::uint64_t size() const { return m_size; }

private:
    std::ifstream m_file;
    std::uint64_t m_size = 0;
};

struct Slice {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

std::optional<Slice> readSlice(Reader &reader, std::uint64_t at, bool is64Bit)
{
    if (!is64Bit) {
        const auto offset = reader.bigEndian(at + 8);
        const auto length = reader.bigEndian(at + 12);
        return offset && length ? std::optional(Slice{*offset, *length}) : std::nullopt;
    }
    const auto offsetHigh = reader.bigEndian(at + 8);
    const auto offsetLow = reader.bigEndian(at + 12);
    const auto lengthHigh = reader.bigEndian(at + 16);
    const auto lengthLow = reader.bigEndian(at + 20);
    if (!offsetHigh || !offsetLow || !lengthHigh || !lengthLow)
        return std::nullopt;
    return Slice{std::uint64_t(*offsetHigh) << 32 | *offsetLow,
                 std::uint64_t(*lengthHigh) << 32 | *lengthLow};
}

std::optional<MachOFile> readUniversalFile(Reader &reader, bool is64Bit)
{
    const auto count = reader.bigEndian(4);
    if (!count || *count == 0 || *count > mostSlices)
        return std::nullopt;
    MachOFile file{{}, true};
    const std::uint64_t sliceHeaderLength = is64Bit ? 32 : 20;
    for (std::uint32_t index = 0; index < *count; ++index) {
        const auto slice = readSlice(reader, 8 + index * sliceHeaderLength, is64Bit);
        if (!slice || slice->offset > reader.size())
            return std::nullopt;
        const auto architecture = reader.thinArchitecture(slice->offset, slice->length);
        if (!architecture)
            return std::nullopt;
        file.architectures.push_back(*architecture);
    }
    return file;
}

} // namespace

std::string MachOFile::description() const
{
    std::string names;
    for (const std::string &architecture : architectures)
        names += (names.empty() ? "" : " ") + architecture;
    return (isUniversal ? "Mach-O universal (" : "Mach-O thin (") + names + ")";
}

std::optional<MachOFile> readMachOFile(const fs::path &path)
{
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return std::nullopt;
    Reader reader(path);
    const auto magic = reader.bigEndian(0);
    if (!magic)
        return std::nullopt;
    if (*magic == fatMagic32 || *magic == fatMagic64)
        return readUniversalFile(reader, *magic == fatMagic64);
    const auto architecture = reader.thinArchitecture(0, reader.size());
    return architecture ? std::optional(MachOFile{{*architecture}, false}) : std::nullopt;
}

} // namespace toolchain
