#pragma once

#include "formats/package/cpio.h"
#include "formats/xar/archive.h"

namespace toolchain::package {

/// Reads what a package installs, or its scripts: a cpio archive, bare or packed with gzip, bzip2, xz or in
/// Apple's chunks of xz ("pbzx"). Memory does not depend on its length. The error names the file in the
/// package.
[[nodiscard]] platform::Outcome readPayload(const xar::Archive &archive, const xar::TocFile &payload,
                                            const CpioVisitor &visitor);

/// The same for bytes that come in blocks.
class PayloadReader {
public:
    explicit PayloadReader(const CpioVisitor &visitor);
    ~PayloadReader();
    PayloadReader(const PayloadReader &) = delete;
    PayloadReader &operator=(const PayloadReader &) = delete;

    /// False once something has failed; `finish` tells what.
    [[nodiscard]] bool add(QByteArrayView bytes);
    [[nodiscard]] platform::Outcome finish();

private:
    class Stream;
    const std::unique_ptr<Stream> m_stream;
};

/// The files of a package that hold payloads: "Payload" at the top or in one of its components.
[[nodiscard]] QList<const xar::TocFile *> payloadsOf(const xar::Archive &archive);

} // namespace toolchain::package
