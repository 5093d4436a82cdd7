#include "ui/submitteditems.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/item.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

bool isOf(const platform::FileService &files, const QString &folder, const QString &identifier)
{
    const auto text = files.readFile(itempath::appending(folder, workingfolder::requestUUIDName.toString()));
    return text && QString::fromUtf8(*text).trimmed() == identifier;
}

QString itemIn(const platform::FileService &files, const QString &folder)
{
    for (const QString &name : files.contentsOfDirectory(folder, platform::FolderLink::follow)) {
        if (submittableExtensions().contains(itempath::extension(name)))
            return itempath::appending(folder, name);
    }
    return {};
}

} // namespace

QString itemSubmittedAs(const platform::FileService &files, const QString &identifier,
                        const QStringList &folders)
{
    const QString suffix = u" - "_s + workingfolder::submitted.toString();
    for (const QString &folder : folders) {
        for (const QString &name : files.contentsOfDirectory(folder, platform::FolderLink::follow)) {
            const QString candidate = itempath::appending(folder, name);
            if (name.endsWith(suffix) && isOf(files, candidate, identifier))
                return itemIn(files, candidate);
        }
    }
    return {};
}

} // namespace sealwright
