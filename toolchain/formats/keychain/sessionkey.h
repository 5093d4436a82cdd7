#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

#include "platform/result.h"

namespace toolchain {

/// An unlocked vault's key, kept in the login session's runtime folder (XDG Base Directory Specification),
/// which the system empties when the session ends. One file of mode 0600 for each vault.
class SessionKey {
public:
    /// `vaultFolder` tells the vaults of a user apart.
    explicit SessionKey(const QString &vaultFolder);

    /// Nothing if the vault has not been unlocked in this session.
    [[nodiscard]] std::optional<QByteArray> read() const;
    [[nodiscard]] platform::Outcome keep(const QByteArray &key) const;
    void forget() const;

private:
    QString m_path;
};

} // namespace toolchain
