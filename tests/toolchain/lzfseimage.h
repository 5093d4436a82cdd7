#pragma once

#include <QString>

/// Writes an image of one partition, whose bytes are those of the file `volume`, in chunks that are LZFSE
/// streams, which the toolchain has 7z read.
void writeLzfseImage(const QString &volume, const QString &image);
