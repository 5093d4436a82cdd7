#include "signing/signingarguments.h"

using namespace Qt::StringLiterals;

namespace sealwright::signingarguments {

namespace {

QStringList withOptions(QStringList arguments, CodesignOptions options)
{
    if (options.deep)
        arguments.prepend(u"--deep"_s);
    if (options.force)
        arguments.prepend(u"--force"_s);
    return arguments;
}

QString applicationIdentity(const QString &identity)
{
    return u"Developer ID Application: "_s + identity;
}

const QString digests = u"--digest-algorithm=sha1,sha256"_s;

} // namespace

QStringList xattr(const QString &item)
{
    return {u"-r"_s, u"-c"_s, u"-s"_s, item};
}

QStringList codesignMember(const QString &item, const QString &identity, const QString &entitlements,
                           CodesignOptions options)
{
    return withOptions({u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"--entitlements"_s, entitlements,
                        u"--verbose=4"_s, u"-s"_s, applicationIdentity(identity), digests, item},
                       options);
}

QStringList codesignMainFile(const QString &item, const QString &identity, const QString &entitlements,
                             CodesignOptions options)
{
    QStringList arguments{u"-o"_s,          u"runtime"_s, u"--timestamp"_s,
                          u"--verbose=4"_s, u"-s"_s,      applicationIdentity(identity),
                          digests,          item};
    if (!entitlements.isNull()) {
        arguments.insert(2, u"--entitlements"_s);
        arguments.insert(3, entitlements);
    }
    return withOptions(arguments, options);
}

QStringList spctl(const QString &type, const QString &item)
{
    return {u"--assess"_s, u"--type"_s, type, u"-vv"_s, item};
}

QStringList spctlExec(const QString &item)
{
    return spctl(u"exec"_s, item);
}

QStringList spctlInstall(const QString &item)
{
    return spctl(u"install"_s, item);
}

QStringList productsign(const QString &package, const QString &identity, const QString &output)
{
    return {u"--sign"_s, u"Developer ID Installer: "_s + identity, package, output};
}

} // namespace sealwright::signingarguments
