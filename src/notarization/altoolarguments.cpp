#include "notarization/altoolarguments.h"

using namespace Qt::StringLiterals;

namespace sealwright::altoolarguments {

namespace {

QStringList identification(const Credentials &credentials)
{
    QStringList arguments{u"-u"_s, credentials.appleID, u"-p"_s, u"@keychain:"_s + credentials.passwordKey};
    if (!credentials.providerName.isEmpty())
        arguments << u"--asc-provider"_s << credentials.providerName;
    return arguments;
}

QStringList output(OutputFormat format)
{
    return format == OutputFormat::xml ? QStringList{u"--output-format"_s, u"xml"_s} : QStringList();
}

} // namespace

QStringList history(const QString &page, const Credentials &credentials, OutputFormat format)
{
    return QStringList{u"--notarization-history"_s, page} + identification(credentials) + output(format);
}

QStringList upload(const QString &file, const QString &bundleID, const Credentials &credentials)
{
    return QStringList{u"--notarize-app"_s, u"-f"_s, file, u"--primary-bundle-id"_s, bundleID}
    + identification(credentials) + output(OutputFormat::xml);
}

QStringList info(const QString &requestUUID, const Credentials &credentials)
{
    return QStringList{u"--notarization-info"_s, requestUUID} + identification(credentials);
}

QStringList listProviders(const Credentials &credentials)
{
    const Credentials ofAccount{credentials.appleID, credentials.passwordKey, {}};
    return QStringList{u"--list-providers"_s} + identification(ofAccount) + output(OutputFormat::xml);
}

} // namespace sealwright::altoolarguments
