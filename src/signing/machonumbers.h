#pragma once

#include <QtGlobal>

namespace sealwright {

/// Numbers at the beginning of Mach-O code. Public documents: Apple's <mach-o/loader.h>, <mach-o/fat.h> and
/// <mach/machine.h>.
namespace macho {

constexpr quint32 thin64 = 0xfeedfacf;
constexpr quint32 thin32 = 0xfeedface;
constexpr quint32 universal = 0xcafebabe;
constexpr quint32 cpuI386 = 7;
constexpr quint32 cpuX86_64 = 0x01000007;
constexpr quint32 cpuArm64 = 0x0100000c;
constexpr quint32 cpuArm64_32 = 0x0200000c;
constexpr quint32 subtypeMask = 0x00ffffff; ///< the rest of the number tells of abilities
constexpr quint32 subtypeArm64e = 2;

constexpr qsizetype universalHeader = 8; ///< bytes
constexpr qsizetype universalEntry = 20; ///< bytes, one for each architecture
/// Java classes have the magic number of universal files, and behind it a number that no count of
/// architectures is.
constexpr quint32 mostArchitectures = 16;

} // namespace macho

} // namespace sealwright
