#pragma once

#include <QHash>
#include <QString>

namespace platform {
class Preferences;
}

namespace sealwright {

/// What the items were called that this machine has submitted, by the service's identifiers: the service's
/// own history does not know. Kept for all documents, from launch to launch. Main thread.
namespace submittednames {

/// Of more than a thousand the oldest is forgotten. Nothing without an identifier.
void remember(platform::Preferences &preferences, const QString &identifier, const QString &name);
/// All that are known, by their identifiers.
[[nodiscard]] QHash<QString, QString> known(const platform::Preferences &preferences);

} // namespace submittednames

} // namespace sealwright
