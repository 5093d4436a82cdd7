#pragma once

#include "run/credentials.h"

#include <QStringList>

namespace sealwright {

/// The argument lists of the notary tool, without the "altool" that xcrun needs in front.
namespace altoolarguments {

[[nodiscard]] QStringList history(const QString &page, const Credentials &credentials,
                                  OutputFormat format = OutputFormat::normal);
[[nodiscard]] QStringList upload(const QString &file, const QString &bundleID,
                                 const Credentials &credentials);
[[nodiscard]] QStringList info(const QString &requestUUID, const Credentials &credentials);
/// The account's teams, whichever of them the credentials name.
[[nodiscard]] QStringList listProviders(const Credentials &credentials);

} // namespace altoolarguments

} // namespace sealwright
