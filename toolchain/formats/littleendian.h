#pragma once

#include <QByteArray>
#include <QtEndian>

namespace toolchain {

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

} // namespace toolchain
