#include "formats/codesignature/codebundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qint64 longestInfo = 16 << 20;

Error badBundle()
{
    return Error{text::badBundle};
}

std::optional<QVariantMap> readInfo(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) || file.size() > longestInfo)
        return std::nullopt;
    const QVariant value = platform::propertyListFromData(file.readAll()).valueOr({});
    return value.metaType() == QMetaType::fromType<QVariantMap>() ? std::optional(value.toMap())
                                                                  : std::nullopt;
}

bool isPlainName(const QString &name)
{
    return !name.contains(u'/') && name != u"."_s && name != u".."_s;
}

bool isFolder(const QString &path)
{
    return QFileInfo(path).isDir();
}

/// The version that Current leads to, by its own name, so that messages and links agree.
QString currentVersion(const QString &root)
{
    const QFileInfo current(root + u"/Versions/Current"_s);
    const QString target = current.isSymLink() ? QFile(current.filePath()).symLinkTarget() : QString();
    const QString name = QFileInfo(target).fileName();
    const bool isSibling = isFolder(root + u"/Versions/"_s + name) && !name.isEmpty();
    return isSibling ? root + u"/Versions/"_s + name : current.filePath();
}

/// Base and layout; the rest is not looked at.
CodeBundle placesOf(const QString &root)
{
    CodeBundle bundle;
    bundle.root = root;
    if (isFolder(root + u"/Contents"_s)) {
        bundle.base = root + u"/Contents"_s;
        bundle.infoPath = bundle.base + u"/Info.plist"_s;
        return bundle;
    }
    const bool hasVersions = isFolder(root + u"/Versions/Current"_s);
    bundle.base = hasVersions ? currentVersion(root) : root;
    const bool isVersion = hasVersions || !QFileInfo::exists(root + u"/Info.plist"_s);
    bundle.layout = isVersion ? BundleLayout::frameworkVersion : BundleLayout::flat;
    bundle.infoPath = bundle.base + (isVersion ? u"/Resources/Info.plist"_s : u"/Info.plist"_s);
    return bundle;
}

/// A bundle's executable has the bundle's name where the Info.plist tells none.
QString defaultExecutable(const CodeBundle &bundle)
{
    return QFileInfo(QDir::cleanPath(bundle.root)).completeBaseName();
}

Result<CodeBundle> withExecutable(CodeBundle bundle)
{
    const QString folder = bundle.layout == BundleLayout::contents ? u"MacOS/"_s : QString();
    const QString named = bundle.info.value(u"CFBundleExecutable"_s).toString();
    const QString name = named.isEmpty() ? defaultExecutable(bundle) : named;
    if (!isPlainName(name))
        return badBundle();
    const QFileInfo file(bundle.base + u'/' + folder + name);
    if (!file.isSymLink() && !file.exists())
        return named.isEmpty() ? Result<CodeBundle>(std::move(bundle)) : badBundle();
    if (file.isDir())
        return badBundle();
    if (file.isSymLink() || !file.isFile())
        return Error{text::notRegular};
    bundle.executable = folder + name;
    return bundle;
}

/// The folder that would be the bundle if a file is its executable: by where it lies, whatever lies beside
/// it.
QString bundleFolderAbove(const QString &file)
{
    const QString folder = QFileInfo(file).path();
    const QString contents = QFileInfo(folder).path();
    const bool isInContents = folder.endsWith(u"/MacOS"_s) && contents.endsWith(u"/Contents"_s);
    return isInContents ? QFileInfo(contents).path() : folder;
}

} // namespace

QString CodeBundle::identifier() const
{
    const QString identifier = info.value(u"CFBundleIdentifier"_s).toString();
    return identifier.isEmpty() ? info.value(u"CFBundleName"_s).toString() : identifier;
}

QString CodeBundle::mainFile() const
{
    return executable.isEmpty() ? infoPath : base + u'/' + executable;
}

QString CodeBundle::sealFolder() const
{
    return base + u"/_CodeSignature"_s;
}

QString CodeBundle::sealPath() const
{
    return sealFolder() + u"/CodeResources"_s;
}

bool CodeBundle::isFramework() const
{
    return layout == BundleLayout::frameworkVersion || root.endsWith(u".framework"_s);
}

QString CodeBundle::kindText() const
{
    const bool isApp = info.value(u"CFBundlePackageType"_s).toString() == u"APPL"_s && !isFramework();
    return isApp ? u"app bundle"_s : u"bundle"_s;
}

Result<CodeBundle> readCodeBundle(const QString &path)
{
    if (isFolder(path + u"/Contents"_s) && isFolder(path + u"/Versions"_s))
        return Error{text::ambiguousBundle};
    CodeBundle bundle = placesOf(path);
    if (QFileInfo(bundle.infoPath).isSymLink())
        return Error{text::notRegular};
    const auto info = readInfo(bundle.infoPath);
    if (!info)
        return badBundle();
    bundle.info = *info;
    return withExecutable(std::move(bundle));
}

std::optional<CodeBundle> bundleOfExecutable(const QString &path)
{
    const QFileInfo item(path);
    const QString file =
        item.isSymLink() ? item.canonicalFilePath() : QDir::cleanPath(item.absoluteFilePath());
    const QString folder = bundleFolderAbove(file);
    const bool mayBeBundle = QFileInfo(folder).fileName().contains(u'.')
        || QFileInfo(QFileInfo(folder).path()).fileName() == u"Versions"_s;
    const auto bundle = mayBeBundle ? readCodeBundle(folder) : Result<CodeBundle>(badBundle());
    const bool isIt = bundle && !bundle->executable.isEmpty() && bundle->mainFile() == file;
    return isIt ? std::optional(*bundle) : std::nullopt;
}

} // namespace toolchain::codesignature
