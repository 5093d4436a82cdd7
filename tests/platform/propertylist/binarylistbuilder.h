#pragma once

#include <QByteArray>
#include <QList>

/// Puts binary lists together byte by byte, wrong ones included.
class BinaryListBuilder {
public:
    /// A big-endian number of so many bytes.
    static QByteArray number(quint64 value, int size)
    {
        QByteArray bytes(size, '\0');
        for (int i = size; i-- > 0; value >>= 8)
            bytes[i] = char(value & 0xff);
        return bytes;
    }

    /// A marker with its length, in the marker up to 14 and in an integer after it beyond.
    static QByteArray marker(int kind, qsizetype length)
    {
        if (length < 0xf)
            return QByteArray(1, char(kind << 4 | int(length)));
        return QByteArray(1, char(kind << 4 | 0xf)) + '\x13' + number(quint64(length), 8);
    }

    static QByteArray ascii(const QByteArray &text) { return marker(0x5, text.size()) + text; }

    QByteArray references(const QList<quint64> &indexes) const
    {
        QByteArray bytes;
        for (const quint64 index : indexes)
            bytes += number(index, referenceSize);
        return bytes;
    }
    QByteArray array(const QList<quint64> &items) const
    {
        return marker(0xa, items.size()) + references(items);
    }
    QByteArray dictionary(const QList<quint64> &keys, const QList<quint64> &values) const
    {
        return marker(0xd, keys.size()) + references(keys) + references(values);
    }

    /// Appends an object; the first is number 0, which is the top object unless told otherwise.
    BinaryListBuilder &add(const QByteArray &object)
    {
        offsets.append(8 + quint64(objects.size()));
        objects += object;
        return *this;
    }

    [[nodiscard]] QByteArray build() const
    {
        QByteArray list = "bplist00" + objects;
        const quint64 tableOffset = quint64(list.size());
        for (const quint64 offset : offsets)
            list += number(offset, offsetSize);
        return list + QByteArray(6, '\0') + char(offsetSize) + char(referenceSize)
            + number(quint64(offsets.size()), 8) + number(topObject, 8) + number(tableOffset, 8);
    }

    int offsetSize = 2;
    int referenceSize = 1;
    quint64 topObject = 0;
    QByteArray objects;
    QList<quint64> offsets;
};
