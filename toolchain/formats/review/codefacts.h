#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "formats/codesignature/trust.h"

namespace toolchain::codesignature {
struct SignedCode;
struct SignedPart;
} // namespace toolchain::codesignature

namespace toolchain::review {

enum class SignatureState {
    none,
    adHoc, ///< without any certificate
    linker, ///< by a linker, which counts as none where something is to be signed
    certified,
    damaged ///< is there and cannot be read
};

/// What a signature says of itself. Whether it is true is another question.
struct SignatureFacts {
    SignatureState state = SignatureState::none;
    QStringList authorities; ///< the names of the certificates, the signer's first
    QString team; ///< empty if there is none
    QString identifier;
    bool isDeveloperId = false; ///< by a certificate of that kind, of Apple's or of this machine
    bool hasRuntime = false;
    bool isInvalid = false; ///< it does not verify, as far as that has been tried
    QDateTime timestamp; ///< of a secure time stamp, in UTC; not valid if there is none
    QByteArray cdHash; ///< 20 bytes of the best digest; empty without a signature
    int hashType = 0; ///< of that digest, as in code directories
    QVariantMap entitlements;
};

/// One architecture of a Mach-O file.
struct SliceFacts {
    QString architecture;
    quint32 fileType = 0; ///< MH_EXECUTE and so on of Apple's <mach-o/loader.h>
    bool runsOnMacs = true; ///< some Mac runs or ran it
    QString platform; ///< such as "macos"; empty if the file does not tell
    quint32 minimumSystem = 0; ///< packed as xxxx.yy.zz; 0 if the file does not tell
    quint32 sdk = 0; ///< the same
    SignatureFacts signature;

    [[nodiscard]] bool isExecutable() const;
    /// Whether the service wants it signed: what can be run or loaded. An object file is neither.
    [[nodiscard]] bool mustBeSigned() const;
};

/// A Mach-O file.
struct CodeFacts {
    QList<SliceFacts> slices; ///< empty if the file is damaged
    QString damage; ///< what is wrong with the file; empty if it can be read

    [[nodiscard]] bool mustBeSigned() const;
    [[nodiscard]] bool isExecutable() const;
};

/// Reads the head and the signature of a Mach-O file and nothing of its code. Any thread.
[[nodiscard]] CodeFacts readCodeFacts(const QString &path, const TrustStore &store);

/// What the signature of one part of an item says.
[[nodiscard]] SignatureFacts signatureFacts(const codesignature::SignedPart &part, const TrustStore &store);

} // namespace toolchain::review
