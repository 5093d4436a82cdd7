#pragma once

#include <QByteArray>
#include <QtEndian>

namespace toolchain {

/// Bytes that grow number by number, the most significant byte first.
class BigEndianBytes {
public:
    template <typename Number>
    BigEndianBytes &add(Number number)
    {
        const Number swapped = qToBigEndian(number);
        m_bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
        return *this;
    }
    BigEndianBytes &u8(quint8 number) { return add(number); }
    BigEndianBytes &u16(quint16 number) { return add(number); }
    BigEndianBytes &u32(quint32 number) { return add(number); }
    BigEndianBytes &u64(quint64 number) { return add(number); }
    BigEndianBytes &raw(QByteArrayView bytes)
    {
        m_bytes.append(bytes);
        return *this;
    }
    BigEndianBytes &zeros(qsizetype count)
    {
        m_bytes.append(count, '\0');
        return *this;
    }

    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// The number whose first byte is at `offset`, the most significant one; 0 if it does not lie within the
/// bytes.
template <typename Number>
[[nodiscard]] Number bigEndianAt(QByteArrayView bytes, qsizetype offset)
{
    if (offset < 0 || offset > bytes.size() - qsizetype(sizeof(Number)))
        return 0;
    return qFromBigEndian<Number>(bytes.data() + offset);
}

} // namespace toolchain
