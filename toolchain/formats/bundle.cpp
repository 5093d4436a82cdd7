#include "formats/bundle.h"

#include <QFile>
#include <QFileInfo>
#include <QVariantMap>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// How one of the two layouts names its parts below the folder that the seal's paths start from.
struct Layout {
    QString infoPath;
    QString executableFolder;
};

const Layout contentsLayout{u"Info.plist"_s, u"MacOS/"_s};
const Layout frameworkLayout{u"Resources/Info.plist"_s, QString()};

std::optional<QVariantMap> readInfo(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QVariant value = platform::propertyListFromData(file.readAll()).value;
    return value.metaType() == QMetaType::fromType<QVariantMap>() ? std::optional(value.toMap())
                                                                  : std::nullopt;
}

QString executableFrom(const QVariantMap &info)
{
    const QString name = info.value(u"CFBundleExecutable"_s).toString();
    return name.contains(u'/') || name == u"."_s || name == u".."_s ? QString() : name;
}

std::optional<Bundle> readLayout(const QString &bundlePath, const QString &base, const Layout &layout)
{
    const auto info = readInfo(base + u'/' + layout.infoPath);
    if (!info)
        return std::nullopt;
    Bundle bundle{base, info->value(u"CFBundleIdentifier"_s).toString(), {}};
    if (bundle.identifier.isEmpty())
        bundle.identifier = QFileInfo(bundlePath).completeBaseName();
    const QString name = executableFrom(*info);
    if (!name.isEmpty())
        bundle.executable = layout.executableFolder + name;
    return bundle;
}

bool mainExecutableIsThere(const Bundle &bundle)
{
    return QFileInfo(bundle.executablePath()).isFile();
}

std::optional<Bundle> readFramework(const QString &bundlePath, const QString &base)
{
    const auto bundle = readLayout(bundlePath, base, frameworkLayout);
    const bool isUsable = bundle && (bundle->executable.isEmpty() || mainExecutableIsThere(*bundle));
    return isUsable ? bundle : std::nullopt;
}

} // namespace

QString Bundle::sealFolder() const
{
    return base + u"/_CodeSignature"_s;
}

QString Bundle::sealPath() const
{
    return sealFolder() + u"/CodeResources"_s;
}

QString Bundle::executablePath() const
{
    return base + u'/' + executable;
}

QString Bundle::ticketPath() const
{
    return base + u"/CodeResources"_s;
}

std::optional<Bundle> readBundle(const QString &path)
{
    const QString contents = path + u"/Contents"_s;
    if (QFileInfo(contents).isDir()) {
        const auto bundle = readLayout(path, contents, contentsLayout);
        const bool isUsable = bundle && !bundle->executable.isEmpty() && mainExecutableIsThere(*bundle);
        return isUsable ? bundle : std::nullopt;
    }
    const QString current = path + u"/Versions/Current"_s;
    return readFramework(path, QFileInfo(current).isDir() ? current : path);
}

QString executableName(const QByteArray &infoPropertyList)
{
    return executableFrom(platform::propertyListFromData(infoPropertyList).value.toMap());
}

} // namespace toolchain
