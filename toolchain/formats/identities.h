#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace toolchain {

/// A certificate of the keychain folder whose private key lies there too.
struct Identity {
    QString commonName;
    QString sha1; ///< of the certificate, 40 upper-case hexadecimal digits
    bool isValidNow = false; ///< today lies within its dates
    bool canSignCode = false; ///< its extended key usage allows code signing
    bool canSignPackages = false; ///< its extended key usage allows signing installer packages
};

struct IdentityList {
    QList<Identity> identities; ///< ordered by the certificates' file names
    QStringList warnings; ///< one line for each file that could not be used
};

enum class IdentityKind {
    Application, ///< "Developer ID Application: ", for codesign
    Installer ///< "Developer ID Installer: ", for packages
};

/// Reads every .pem, .crt and .key file of a keychain folder; a key may lie in another file than its
/// certificate. A folder that does not exist is an empty one.
[[nodiscard]] IdentityList readIdentities(const QString &folder);

/// What a certificate says, given in DER form; nothing if it cannot be read.
[[nodiscard]] std::optional<Identity> readCertificate(const QByteArray &certificate);

struct IdentityChoice {
    std::optional<Identity> identity;
    QString problem; ///< why there is none; empty if there is
};

/// The one valid identity of a kind that is meant by a certificate's name, a part of it, or its SHA-1. A
/// whole name goes before names that it is a part of.
[[nodiscard]] IdentityChoice chooseIdentity(const QString &folder, const QString &wanted, IdentityKind kind);

/// The common name of the identity that `makeIdentity` makes.
[[nodiscard]] QString identityCommonName(const QString &name, IdentityKind kind);

struct NewIdentity {
    QString path; ///< of the PEM file; empty on failure
    QString error;
};

/// Makes a key (elliptic curve P-256; RSA of 2048 bits for packages) and a self-signed certificate for it,
/// good for ten years, in one PEM file of the folder that only its owner may read. The certificate says in
/// its organisation what it is.
[[nodiscard]] NewIdentity makeIdentity(const QString &folder, const QString &name, IdentityKind kind);

} // namespace toolchain
