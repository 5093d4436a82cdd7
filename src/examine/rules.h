#pragma once

#include <QString>

namespace sealwright {

/// The names of the rules, which scripts know.
namespace examine::rule {

inline const QString unsignedCode = QStringLiteral("unsigned-code");
inline const QString skippedCode = QStringLiteral("skipped-code");
inline const QString codeInArchive = QStringLiteral("code-in-archive");
inline const QString notDeveloperId = QStringLiteral("not-developer-id");
inline const QString noTimestamp = QStringLiteral("no-timestamp");
inline const QString noHardenedRuntime = QStringLiteral("no-hardened-runtime");
inline const QString getTaskAllow = QStringLiteral("get-task-allow");
inline const QString oldSdk = QStringLiteral("old-sdk");
inline const QString signatureInvalid = QStringLiteral("signature-invalid");
inline const QString damagedCode = QStringLiteral("damaged-code");
inline const QString unknownArchitecture = QStringLiteral("unknown-architecture");
inline const QString missingExecutable = QStringLiteral("missing-executable");
inline const QString invalidInfoPlist = QStringLiteral("invalid-info-plist");
inline const QString invalidEntitlements = QStringLiteral("invalid-entitlements");
inline const QString ambiguousBundle = QStringLiteral("ambiguous-bundle");
inline const QString unsealedRoot = QStringLiteral("unsealed-root");
inline const QString brokenLink = QStringLiteral("broken-link");
inline const QString linkLeavesItem = QStringLiteral("link-leaves-item");
inline const QString pathTooLong = QStringLiteral("path-too-long");
inline const QString missingIdentifier = QStringLiteral("missing-identifier");
inline const QString nameCollision = QStringLiteral("name-collision");
inline const QString restrictedEntitlement = QStringLiteral("restricted-entitlement");
inline const QString libraryValidation = QStringLiteral("library-validation");
inline const QString olderThanLast = QStringLiteral("older-than-last");
inline const QString nestedArchiveTooDeep = QStringLiteral("nested-archive-too-deep");
inline const QString forbiddenAttribute = QStringLiteral("forbidden-attribute");
inline const QString unreadable = QStringLiteral("unreadable");

/// What a person can do about it.
[[nodiscard]] QString advice(const QString &ruleName);

} // namespace examine::rule

} // namespace sealwright
