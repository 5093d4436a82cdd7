#pragma once

#include <QString>
#include <QStringList>

namespace sealwright {

/// The argument lists of the signing tools.
namespace signingarguments {

inline const QString spctlTool = QStringLiteral("/usr/sbin/spctl");

/// Options that the user's preferences put in front of a codesign line.
struct CodesignOptions {
    bool deep = false;
    bool force = false;
};

[[nodiscard]] QStringList xattr(const QString &item);
/// `identity` is the name without its prefix.
[[nodiscard]] QStringList codesignMember(const QString &item, const QString &identity,
                                         const QString &entitlements, CodesignOptions options);
/// `entitlements` is null for a main file that gets none. The order is not that of a member's line.
[[nodiscard]] QStringList codesignMainFile(const QString &item, const QString &identity,
                                           const QString &entitlements, CodesignOptions options);
/// An assessment of the item for that kind of use.
[[nodiscard]] QStringList spctl(const QString &type, const QString &item);
[[nodiscard]] QStringList spctlExec(const QString &item);
[[nodiscard]] QStringList spctlInstall(const QString &item);
[[nodiscard]] QStringList productsign(const QString &package, const QString &identity, const QString &output);

} // namespace signingarguments

} // namespace sealwright
