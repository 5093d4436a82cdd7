#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "platform/result.h"

namespace toolchain::package {

enum class BomType { file, folder, link, device };

/// An item of a bill of materials.
struct BomEntry {
    QByteArray path; ///< "." for the folder that all lies in, "./name" for what lies in it
    BomType type = BomType::file;
    quint32 mode = 0; ///< with the type's bits
    quint32 user = 0;
    quint32 group = 0;
    quint32 size = 0; ///< bytes, modulo 2^32
    quint32 checksum = 0; ///< of a file or a link's target, as cksum(1) computes it
    QByteArray linkTarget;
};

/// Takes the bill of materials of a package apart, in the order in which lsbom(8) lists it: a folder before
/// what lies in it. Apple has published no description of the form; it was measured on bills of real
/// packages.
[[nodiscard]] platform::Result<QList<BomEntry>> readBom(const QByteArray &bytes);

} // namespace toolchain::package
