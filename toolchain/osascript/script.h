#pragma once

#include <QString>

#include <optional>

namespace toolchain {

/// What a script wants of DropDMG.
struct Script {
    enum class Wish { listConfigurations, createImage };
    Wish wish = Wish::listConfigurations;
    QString file; ///< the path of what an image is to be made of
    QString configuration; ///< the name of the one to be used
};

/// Recognises the two scripts that are understood, letter by letter but for the number of seconds and what
/// stands between quotes. Nothing for any other.
[[nodiscard]] std::optional<Script> readScript(const QString &source);

/// A text between quotes, as AppleScript would write it.
[[nodiscard]] QString quoted(const QString &text);

} // namespace toolchain
