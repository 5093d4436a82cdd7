#include "signing/entitlements.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/propertylist/propertylist.h"
#include "run/run.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

platform::Error whyUnreadable(const platform::FileService &files, const QUrl &extra)
{
    const QString text = files.isReachable(itempath::fromUrl(extra))
        ? u"Permission to read the designated extra entitlements file at '%1' has not been granted."_s
        : u"The designated extra entitlements file at '%1' is missing."_s;
    return {text.arg(extra.toString(QUrl::FullyEncoded))}; // as the URL, unlike in the log file
}

platform::Result<QVariantMap> extraEntitlements(const platform::FileService &files, const QUrl &extra)
{
    const QString path = itempath::fromUrl(extra);
    const QString shown = extra.toString(QUrl::FullyEncoded);
    if (!files.isReadable(path))
        return whyUnreadable(files, extra);
    const auto data = files.readFile(path);
    if (!data)
        return platform::Error{
            u"Failed to read extra entitlements file at '%1': %2"_s.arg(shown, data.error())};
    const auto list = platform::propertyListFromData(*data);
    if (!list || list->typeId() != QMetaType::QVariantMap)
        return platform::Error{u"Failed to read extra entitlements property list file at '%1': %2"_s.arg(
            shown, list ? u"The file is damaged or does not contain a dictionary."_s : list.error())};
    return list->toMap();
}

void logEntitlements(Run &run)
{
    if (!run.log.isOpen())
        return;
    const QString text = platform::propertyListDescription(run.inputs().entitlements);
    const QString extra = run.inputs().extraEntitlements;
    run.log.logToFile(extra.isEmpty()
                          ? u"Entitlements: %1"_s.arg(text)
                          : u"Entitlements, including those in the file '%1': %2"_s.arg(extra, text));
}

} // namespace

platform::Result<QVariantMap> withExtraEntitlements(const QVariantMap &switchedOn, const QUrl &extra,
                                                    const platform::FileService &files)
{
    if (extra.isEmpty())
        return switchedOn;
    const auto more = extraEntitlements(files, extra);
    if (!more)
        return more.failure();
    QVariantMap entitlements = switchedOn;
    entitlements.insert(*more); // the file wins
    return entitlements;
}

StepResult saveEntitlementsDictionary(Run &run)
{
    logEntitlements(run);
    const auto list = platform::xmlPropertyListData(run.inputs().entitlements);
    if (!list)
        return Failure{u"Cannot Create Entitlements"_s,
                       u"Failed to create entitlements property list: %1"_s.arg(list.error()),
                       FolderFate::keepsItsName};
    const auto saved = run.host.files.writeFile(run.folder.path(workingfolder::entitlementsName), *list);
    if (!saved)
        return Failure{u"Cannot Save Entitlements"_s,
                       u"Failed to save entitlements file: %1"_s.arg(saved.error())};
    return Done{};
}

} // namespace sealwright
