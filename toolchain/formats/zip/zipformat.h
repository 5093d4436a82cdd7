#pragma once

#include <QtEndian>

#include <QByteArray>

/// Numbers of zip archives. Format: PKWARE's APPNOTE.TXT, and the Info-ZIP project's extra field for times.
namespace toolchain::zip {

inline constexpr quint32 localSignature = 0x04034b50;
inline constexpr quint32 centralSignature = 0x02014b50;
inline constexpr quint32 endSignature = 0x06054b50;
inline constexpr quint32 end64Signature = 0x06064b50;
inline constexpr quint32 locatorSignature = 0x07064b50;

inline constexpr qsizetype localSize = 30; ///< of a local header without name and extra fields
inline constexpr qsizetype centralSize = 46; ///< of a directory's entry, likewise
inline constexpr qsizetype endSize = 22;
inline constexpr qsizetype end64Size = 56;
inline constexpr qsizetype locatorSize = 20;

inline constexpr quint16 isEncrypted = 0x0001;
inline constexpr quint16 storedMethod = 0;
inline constexpr quint16 deflateMethod = 8;
inline constexpr quint16 madeOnUnix = 3 << 8;
inline constexpr quint16 sizesField = 0x0001; ///< the extra field with what takes 64 bits
inline constexpr quint16 timesField = 0x5455; ///< the extra field with times in seconds since 1970
inline constexpr quint32 in64 = 0xffffffff; ///< a number that stands in the extra field

/// Bytes that grow number by number, the least significant byte first.
class LittleEndianBytes {
public:
    template <typename Number>
    LittleEndianBytes &add(Number number)
    {
        const Number swapped = qToLittleEndian(number);
        m_bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
        return *this;
    }
    LittleEndianBytes &u16(quint16 number) { return add(number); }
    LittleEndianBytes &u32(quint32 number) { return add(number); }
    LittleEndianBytes &u64(quint64 number) { return add(number); }
    LittleEndianBytes &raw(QByteArrayView bytes)
    {
        m_bytes.append(bytes);
        return *this;
    }
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// The number whose first byte is at `offset`, the least significant one; 0 if it does not lie within the
/// bytes.
template <typename Number>
[[nodiscard]] Number littleEndianAt(QByteArrayView bytes, qsizetype offset)
{
    if (offset < 0 || offset > bytes.size() - qsizetype(sizeof(Number)))
        return 0;
    return qFromLittleEndian<Number>(bytes.data() + offset);
}

} // namespace toolchain::zip
