#pragma once

#include <QHash>
#include <QString>

namespace platform {
struct Host;
}

namespace sealwright {

/// What the items were called that this machine has submitted, by the service's identifiers: the service's
/// own history does not know. Kept for all documents in a file of the state folder, from launch to launch;
/// nowhere where there is no such folder. Main thread.
namespace submittednames {

/// Of more than a thousand the oldest is forgotten. Nothing without an identifier.
void remember(const platform::Host &host, const QString &identifier, const QString &name);
/// All that are known, by their identifiers.
[[nodiscard]] QHash<QString, QString> known(const platform::Host &host);

} // namespace submittednames

} // namespace sealwright
