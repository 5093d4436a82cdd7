#pragma once

#include <QByteArray>
#include <QList>

/// Writes cpio archives and Apple's containers by hand, good and bad ones.
namespace cpiobuilder {

struct CpioItem {
    QByteArray name;
    quint32 mode = 0100644;
    QByteArray content;
};

/// The portable form ("070707") with its last item.
[[nodiscard]] QByteArray portable(const QList<CpioItem> &items);

/// The newer form ("070701").
[[nodiscard]] QByteArray newer(const QList<CpioItem> &items);

/// Chunks of xz, each of so many bytes before packing.
[[nodiscard]] QByteArray pbzx(const QByteArray &bytes, qsizetype chunk);

} // namespace cpiobuilder
