#pragma once

#include <QString>

namespace sealwright {

/// The reference of what scripts can reach, as Markdown: for each class its tables of properties, methods and
/// signals, as they are on the bus.
[[nodiscard]] QString scriptingReference();

/// The text with the reference in place of what stands between its two marker lines; null if it has not both.
[[nodiscard]] QString withScriptingReference(const QString &text);

} // namespace sealwright
