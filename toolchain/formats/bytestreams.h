#pragma once

#include <QByteArrayView>

#include <functional>

namespace toolchain {

/// Takes the next bytes of something long. False stops the sender; the taker knows why.
using ByteSink = std::function<bool(QByteArrayView)>;

/// Fills `size` bytes at `target` with those at `offset` of something long. False if it cannot give them all.
using ByteSource = std::function<bool(quint64 offset, char *target, qsizetype size)>;

} // namespace toolchain
