#pragma once

#include "toolchain/bundlebuilder.h"

#include <QList>

#include <optional>

namespace bundlebuilder {

/// What a made-up Mach-O file is to be. It has a segment __TEXT with code that differs from page to page, and
/// a
/// __LINKEDIT behind it.
struct MachORecipe {
    Architecture architecture = arm64;
    ByteOrder order = ByteOrder::little;
    std::uint32_t fileType = 2;
    std::uint32_t platform = 1; ///< 0: no LC_BUILD_VERSION
    std::uint32_t minimumSystem = 0x000b0000;
    std::uint32_t sdk = 0x000c0300;
    std::uint32_t codeLength = 0x4000; ///< of __TEXT, from the beginning of the file
    std::uint32_t firstSection = 0x800; ///< where the room for load commands ends
    std::uint32_t linkeditLength = 16;
    bool hasUuid = true;
    bool hasSymbolTable = false; ///< without symbols; its strings fill __LINKEDIT
    QByteArray infoPropertyList{}; ///< in a section of its own if it is not empty
};

QByteArray machO(const MachORecipe &recipe);

/// A universal file of these slices, each at a multiple of 0x4000.
QByteArray universalOf(const QList<QByteArray> &slices, bool hasWideHeader = false);

} // namespace bundlebuilder
