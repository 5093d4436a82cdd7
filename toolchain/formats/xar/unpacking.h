#pragma once

#include "formats/bytestreams.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace toolchain::xar {

/// Unpacks a stream that comes in blocks. Its memory does not depend on the stream's length.
class Unpacker {
public:
    virtual ~Unpacker() = default;

    /// Takes the next packed bytes and gives what comes of them to the sink. False if they are damaged or the
    /// sink stops.
    [[nodiscard]] virtual bool add(QByteArrayView bytes, const ByteSink &sink) = 0;

    /// Whether the stream has come to its end.
    [[nodiscard]] virtual bool isFinished() const = 0;
};

/// For a media type of a table of contents: none, "application/octet-stream", "application/x-gzip" (which is
/// a zlib stream), "application/x-bzip2", "application/x-lzma" or "application/x-xz". Null for another one.
[[nodiscard]] std::unique_ptr<Unpacker> unpackerFor(const QString &encoding);

/// For an xz or lzma stream.
[[nodiscard]] std::unique_ptr<Unpacker> makeXzUnpacker();

} // namespace toolchain::xar
