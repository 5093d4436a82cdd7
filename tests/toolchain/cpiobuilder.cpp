#include "toolchain/cpiobuilder.h"

#include <QtEndian>

#include <gtest/gtest.h>
#include <lzma.h>

namespace cpiobuilder {

namespace {

QByteArray digits(quint64 number, int width, int base)
{
    return QByteArray::number(number, base).rightJustified(width, '0');
}

QByteArray toFour(const QByteArray &bytes)
{
    return bytes + QByteArray((4 - bytes.size() % 4) % 4, '\0');
}

QByteArray portableItem(const CpioItem &item)
{
    return "070707" + digits(1, 6, 8) + digits(2, 6, 8) + digits(item.mode, 6, 8) + QByteArray(24, '0')
        + digits(1'000'000'000, 11, 8) + digits(quint64(item.name.size() + 1), 6, 8)
        + digits(quint64(item.content.size()), 11, 8) + item.name + '\0' + item.content;
}

QByteArray newerItem(const CpioItem &item)
{
    const QByteArray head = "070701" + digits(1, 8, 16) + digits(item.mode, 8, 16) + QByteArray(24, '0')
        + digits(1'000'000'000, 8, 16) + digits(quint64(item.content.size()), 8, 16) + QByteArray(32, '0')
        + digits(quint64(item.name.size() + 1), 8, 16) + QByteArray(8, '0');
    return toFour(head + item.name + '\0') + toFour(item.content);
}

QByteArray xz(const QByteArray &bytes)
{
    QByteArray result(bytes.size() + 1'024, '\0');
    std::size_t length = 0;
    EXPECT_EQ(lzma_easy_buffer_encode(1, LZMA_CHECK_CRC32, nullptr,
                                      reinterpret_cast<const uint8_t *>(bytes.constData()),
                                      std::size_t(bytes.size()), reinterpret_cast<uint8_t *>(result.data()),
                                      &length, std::size_t(result.size())),
              LZMA_OK);
    return result.first(qsizetype(length));
}

QByteArray bigEndian(quint64 number)
{
    const quint64 swapped = qToBigEndian(number);
    return {reinterpret_cast<const char *>(&swapped), sizeof swapped};
}

} // namespace

QByteArray portable(const QList<CpioItem> &items)
{
    QByteArray bytes;
    for (const CpioItem &item : items)
        bytes += portableItem(item);
    return bytes + portableItem({"TRAILER!!!", 0, {}});
}

QByteArray newer(const QList<CpioItem> &items)
{
    QByteArray bytes;
    for (const CpioItem &item : items)
        bytes += newerItem(item);
    return bytes + newerItem({"TRAILER!!!", 0, {}});
}

QByteArray pbzx(const QByteArray &bytes, qsizetype chunk)
{
    QByteArray result = "pbzx" + bigEndian(quint64(chunk));
    for (qsizetype from = 0; from < bytes.size(); from += chunk) {
        const QByteArray plain = bytes.mid(from, chunk);
        const QByteArray packed = xz(plain);
        const QByteArray &stored = packed.size() < plain.size() ? packed : plain;
        result += bigEndian(quint64(plain.size())) + bigEndian(quint64(stored.size())) + stored;
    }
    return result;
}

} // namespace cpiobuilder
