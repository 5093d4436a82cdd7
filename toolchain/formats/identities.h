#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

#include "formats/codesignature/trust.h"
#include "platform/result.h"

namespace toolchain {

struct KeychainContents;

/// A certificate of the keychain folder whose private key is there too.
struct Identity {
    QString commonName;
    QString sha1; ///< of the certificate, 40 upper-case hexadecimal digits
    bool isValidNow = false; ///< today lies within its dates
    bool canSignCode = false; ///< its extended key usage allows code signing
    bool canSignPackages = false; ///< its extended key usage allows signing installer packages
    QByteArray certificate; ///< in DER form
    Trust trust; ///< of its chain, for no purpose in particular and now
};

struct IdentityList {
    QList<Identity> identities; ///< ordered by the certificates' file names
    QStringList warnings; ///< one line for each file that could not be used
};

enum class IdentityKind {
    application, ///< "Developer ID Application: ", for codesign
    installer ///< "Developer ID Installer: ", for packages
};

/// Reads a keychain folder. A folder that does not exist is an empty one.
[[nodiscard]] IdentityList readIdentities(const QString &folder);

/// Apple's policy for code, as find-identity applies it, apart from dates and anchor: code signing as the
/// purpose, and where the chain has one of Apple's markers for developers, the marker that belongs to it in
/// the leaf.
[[nodiscard]] bool satisfiesCodeSigningPolicy(const Identity &identity);

/// The one identity of a kind that is meant by a certificate's name, a part of it, or its SHA-1. A whole name
/// goes before names that it is a part of, identities that are within their dates go before others.
[[nodiscard]] platform::Result<Identity> chooseIdentity(const QString &folder, const QString &wanted,
                                                        IdentityKind kind);

/// The same in a keychain folder that has been read.
[[nodiscard]] platform::Result<Identity> chooseIdentity(const KeychainContents &contents,
                                                        const QString &wanted, IdentityKind kind);

/// The common name of the identity that `makeIdentity` makes.
[[nodiscard]] QString identityCommonName(const QString &name, IdentityKind kind);

/// Has the authority of this machine make a key (RSA of 2048 bits, kept in the vault) and a certificate for
/// it with Apple's extensions for Developer ID. `name` is the holder with the team in parentheses.
/// Answers the path of the certificate's PEM file.
[[nodiscard]] platform::Result<QString> makeIdentity(const QString &folder, const QString &name,
                                                     IdentityKind kind);

} // namespace toolchain
