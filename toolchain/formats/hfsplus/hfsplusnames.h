#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace toolchain {

/// File names as an HFS+ volume stores and orders them.
/// Format: Apple Technical Note TN1150, "HFS Plus Names" and "Case-Insensitive String Comparison Algorithm".
namespace hfsplus {

inline constexpr qsizetype longestName = 255; ///< in UTF-16 units, after taking the name apart

/// A file name as it is stored: characters taken apart, a colon as a slash. Empty if the bytes are not UTF-8
/// or the name becomes too long.
[[nodiscard]] std::optional<QString> storedName(std::string_view fileName);

enum class NameForm {
    asStored, ///< with characters taken apart, as macOS gives it to programs
    composed ///< with characters put together, as the file was called that the name comes from
};

/// The file name in UTF-8 that a stored name stands for. Empty if no file can be called so.
[[nodiscard]] std::optional<QByteArray> fileName(const QString &storedName,
                                                 NameForm form = NameForm::asStored);

/// The form in which a stored name gives back the file name that it was made of.
[[nodiscard]] NameForm formOf(std::string_view fileName, const QString &storedName);

/// What a volume compares instead of the name: without case and without what cannot be seen. Two names whose
/// folded forms are equal cannot lie in one folder; the folded forms order a folder, unit by unit.
[[nodiscard]] std::u16string foldedName(const QString &storedName);

} // namespace hfsplus

} // namespace toolchain
