#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace toolchain {

/// A development team.
struct Provider {
    QString shortName; ///< for --asc-provider
    QString name;
    QString teamIdentifier;
};

struct ProviderList {
    QList<Provider> providers; ///< each team once, in the order of its first identity
    QStringList warnings; ///< one line for each file or identity that could not be used
};

/// The teams that the valid identities of a keychain folder belong to, since there is no account to ask.
/// Their identifiers serve as their short names too.
[[nodiscard]] ProviderList readProviders(const QString &keychainFolder);

} // namespace toolchain
