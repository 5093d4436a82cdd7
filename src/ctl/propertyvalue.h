#pragma once

#include "scripting/definition/scriptingdefinition.h"

#include <QStringList>
#include <QVariant>

#include <optional>

namespace sealwright {

/// What a property of the class holds, by its name on the bus; nothing if there is no such property.
[[nodiscard]] std::optional<scriptingdefinition::ValueType> typeOfProperty(const QString &className,
                                                                           const QString &name);

/// The value that the words stand for, as it goes over the bus; nothing if they stand for none of the type.
/// All but the four numbers of bounds take one word.
[[nodiscard]] std::optional<QVariant> readValue(scriptingdefinition::ValueType type,
                                                const QStringList &words);

/// What a value of the type looks like, to follow "takes".
[[nodiscard]] QString describe(scriptingdefinition::ValueType type);

/// The file URL of a path, which may be relative.
[[nodiscard]] QString fileUrl(const QString &path);

} // namespace sealwright
