#include "examine/bundlereading.h"

#include <QFile>
#include <QFileInfo>

namespace sealwright {

namespace signing = toolchain::codesignature;
namespace seal = toolchain::seal;

namespace examine {

namespace {

ReadBundle readBundle(const QString &path)
{
    ReadBundle read{signing::readCodeBundle(path), {}, {}};
    if (!read.bundle)
        return read;
    const seal::SealedFolder folder = sealedFolder(*read.bundle);
    static const seal::RuleSet none = *seal::RuleSet::fromRules({});
    auto scanned =
        seal::scanFolder(folder, none, seal::secondRules(folder.layout), seal::Keep::nestedCodeAndLinks);
    if (scanned)
        read.items = *std::move(scanned);
    else
        read.scanError = scanned.error();
    return read;
}

} // namespace

seal::SealedFolder sealedFolder(const signing::CodeBundle &bundle)
{
    const bool isFlat = bundle.layout == signing::BundleLayout::flat;
    return {bundle.base, isFlat ? seal::Layout::flat : seal::Layout::withResources,
            QFile::encodeName(bundle.executable)};
}

QStringList nestedCodeOf(const ReadBundle &read)
{
    QStringList paths;
    for (const seal::ScannedItem &item : read.items) {
        if (item.kind == seal::ItemKind::nestedCode)
            paths.append(read.bundle->base + u'/' + QFile::decodeName(item.path));
    }
    return paths;
}

std::map<QString, ReadBundle> readBundles(const QStringList &paths)
{
    std::map<QString, ReadBundle> bundles;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.isDir() && !info.isSymLink())
            bundles.emplace(path, readBundle(path));
    }
    return bundles;
}

} // namespace examine

} // namespace sealwright
