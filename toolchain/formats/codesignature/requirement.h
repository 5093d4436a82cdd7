#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <functional>

#include "platform/result.h"

/// Requirements of code: expressions over its signature, as text and in the binary form that signatures hold.
/// Public document: Apple's Code Signing Guide, "Code Signing Requirement Language".
namespace toolchain::codesignature {

enum class RequirementType : quint32 { host = 1, guest = 2, designated = 3, library = 4, plugin = 5 };

/// The word in front of "=>".
[[nodiscard]] QString requirementTypeName(RequirementType type);

/// Requirements by their type, each as the blob of one requirement.
using RequirementSet = QMap<RequirementType, QByteArray>;

/// The blob of one requirement whose text this is. The error tells the place of what is not understood.
[[nodiscard]] platform::Result<QByteArray> compileRequirement(const QString &text);

/// The same of a set: "designated => … host => …".
[[nodiscard]] platform::Result<RequirementSet> compileRequirementSet(const QString &text);

/// A set as a blob, and back.
[[nodiscard]] QByteArray requirementSetBlob(const RequirementSet &set);
[[nodiscard]] platform::Result<RequirementSet> readRequirementSet(QByteArrayView blob);

/// The text of a requirement; it compiles to one that means the same. Depth and length are bounded.
[[nodiscard]] platform::Result<QString> requirementText(QByteArrayView blob);

/// The lines of a set, "designated => …", each ended by a newline.
[[nodiscard]] platform::Result<QString> requirementSetText(const RequirementSet &set);

/// What a requirement is asked of.
struct RequirementSubject {
    QString identifier;
    QList<QByteArray> cdHashes; ///< 20 bytes each; of all slices
    QVariantMap info; ///< the Info.plist
    QVariantMap entitlements;
    QList<QByteArray> chain; ///< certificates as DER, the leaf first; none: ad hoc
    bool endsInApplesRoot = false;
    bool isNotarized = false;
    std::function<bool(qsizetype)>
        isTrusted; ///< of a certificate of the chain; none is, if there is no function
};

/// Whether the requirement is met. The error says why it cannot be told.
[[nodiscard]] platform::Result<bool> meetsRequirement(QByteArrayView blob, const RequirementSubject &subject);

/// Who has signed, as far as the designated requirement asks.
struct SignerFacts {
    QList<QByteArray> chain; ///< certificates as DER, the leaf first
    bool endsInApplesRoot = false;
    bool endsInOwnAuthority =
        false; ///< of this machine, which stands for Apple's but is named by its own root
};

/// The designated requirement of what a certificate has signed and that brought none of its own.
[[nodiscard]] QByteArray designatedRequirementFor(const QString &identifier, const SignerFacts &signer);

/// "cdhash H"…" or cdhash H"…"".
[[nodiscard]] QByteArray requirementForCdHashes(const QList<QByteArray> &cdHashes);

} // namespace toolchain::codesignature
