#include "platform/bundle.h"

#include "platform/fileservice.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace platform {

std::optional<QVariantMap> informationDictionary(const FileService &files, const QString &path,
                                                 BundleLayout layout)
{
    const QString folder = layout == BundleLayout::contents ? u"/Contents"_s : u"/Resources"_s;
    const auto data = files.readFile(path + folder + u"/Info.plist"_s);
    if (!data)
        return std::nullopt;
    const auto list = propertyListFromData(*data);
    if (!list || list->typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return list->toMap();
}

QString informationText(const FileService &files, const QString &path, const QString &key,
                        BundleLayout layout)
{
    const auto dictionary = informationDictionary(files, path, layout);
    if (!dictionary)
        return {};
    const QVariant value = dictionary->value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString bundleIdentifier(const FileService &files, const QString &path)
{
    return informationText(files, path, u"CFBundleIdentifier"_s);
}

} // namespace platform
