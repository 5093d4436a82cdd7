#pragma once

#include <QByteArray>
#include <QString>

/// Mach-O files from clang and lld, each made once for all tests of a program. `architecture` is "x86_64",
/// "arm64" or "universal"; the linker signs what it makes for arm64, and nothing else.
namespace codefiles {

[[nodiscard]] QByteArray executable(const QString &architecture);
[[nodiscard]] QByteArray library(const QString &architecture);
[[nodiscard]] QByteArray loadable(const QString &architecture);
[[nodiscard]] QByteArray object(const QString &architecture);
/// An executable for x86_64 that was built with the SDK of macOS 10.8.
[[nodiscard]] QByteArray oldExecutable();
/// A library with the head of one for i386, which no tool signs.
[[nodiscard]] QByteArray library32();

} // namespace codefiles
