#pragma once

#include "formats/codesignature/machoimage.h"

#include <QtEndian>

namespace toolchain::codesignature {

/// Numbers of a Mach-O head in its own byte order; 0 outside of it.
class HeadReader {
public:
    HeadReader(QByteArrayView head, bool isBigEndian)
        : m_head(head)
        , m_isBigEndian(isBigEndian)
    {
    }

    [[nodiscard]] quint32 u32(quint64 offset) const { return number<quint32>(offset); }
    [[nodiscard]] quint64 u64(quint64 offset) const { return number<quint64>(offset); }
    /// A name in a field of 16 bytes.
    [[nodiscard]] QByteArray name(quint64 offset) const;

private:
    template <typename Number>
    [[nodiscard]] Number number(quint64 offset) const
    {
        if (offset + sizeof(Number) > quint64(m_head.size()))
            return 0;
        const char *at = m_head.data() + offset;
        return m_isBigEndian ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
    }

    QByteArrayView m_head;
    bool m_isBigEndian;
};

/// Numbers of load commands in Apple's <mach-o/loader.h>.
namespace command {
inline constexpr quint32 segment32 = 0x1;
inline constexpr quint32 symbolTable = 0x2;
inline constexpr quint32 segment64 = 0x19;
inline constexpr quint32 uuid = 0x1b;
inline constexpr quint32 codeSignature = 0x1d;
inline constexpr quint32 minimumMacOS = 0x24;
inline constexpr quint32 minimumIOS = 0x25;
inline constexpr quint32 minimumTvOS = 0x2f;
inline constexpr quint32 minimumWatchOS = 0x30;
inline constexpr quint32 buildVersion = 0x32;
} // namespace command

/// Fills in what the load commands of a slice tell, whose head and place are there already.
[[nodiscard]] platform::Result<MachOSlice> readLoadCommands(MachOSlice slice);

} // namespace toolchain::codesignature
