#include "formats/codesignature/bundleroot.h"

#include "formats/fileattributes.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

bool isOfFinder(const QFileInfo &entry)
{
    const QString name = entry.fileName();
    return name == ".DS_Store"_L1 || name == "Icon\r"_L1 || isSidecar(entry.filePath());
}

bool leadsInto(const QString &folder, const QFileInfo &link)
{
    return link.isSymLink() && link.symLinkTarget().startsWith(folder);
}

bool isFramework(const CodeBundle &bundle)
{
    return QFileInfo(bundle.root + u"/Versions"_s).isDir();
}

/// A flat bundle is all its own folder, and so is the version of a framework that is signed by its path.
bool sealsItsRoot(const CodeBundle &bundle)
{
    return bundle.layout == BundleLayout::flat
        || (bundle.layout == BundleLayout::frameworkVersion && !isFramework(bundle));
}

} // namespace

QString unsealedRootOf(const CodeBundle &bundle)
{
    if (sealsItsRoot(bundle))
        return {};
    const bool isVersioned = isFramework(bundle);
    const QString kept = isVersioned ? u"Versions"_s : u"Contents"_s;
    const QString current = QDir::cleanPath(bundle.root) + u"/Versions/Current"_s;
    const auto entries =
        QDir(bundle.root)
            .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const bool belongs = entry.fileName() == kept || (isVersioned && leadsInto(current, entry));
        if (!belongs && !isOfFinder(entry))
            return isVersioned ? text::unsealedFrameworkRoot : text::unsealedRoot;
    }
    return {};
}

} // namespace toolchain::codesignature
