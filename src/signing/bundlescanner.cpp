#include "signing/bundlescanner.h"

#include "document/mainwincontroller.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

namespace {

const QString executableKey = u"CFBundleExecutable"_s;
const QString fileTool = u"/usr/bin/file"_s;

// What lies behind a link is found where it lies. Two links to a folder above them would never let the walk
// end.
constexpr auto links = platform::FolderLink::leaveAlone;

bool isNeverSigned(const QString &fileName)
{
    return fileName == "PkgInfo"_L1 || fileName == "CodeResources"_L1;
}

/// What a resource-fork editor and a bridge of older macOS versions leave behind, and what would break the
/// seal.
bool isLeftover(const QString &file, const QString &fileName)
{
    return (fileName == "Scriptbench.plist"_L1 || fileName == "Bridgescope.plist"_L1)
        && itempath::lastComponent(itempath::folder(file)) == "Contents"_L1;
}

bool isSignedUntested(const QString &lowerExtension)
{
    return lowerExtension == "dylib"_L1 || lowerExtension == "wflow"_L1;
}

bool isNeverExamined(const QString &lowerExtension)
{
    static const QSet<QString> extensions{u"txt"_s, u"h"_s, u"strings"_s, u"rtf"_s, u"scpt"_s, u"rtfd"_s};
    return extensions.contains(lowerExtension);
}

} // namespace

void OrderedPathSet::append(const QString &path)
{
    if (m_known.contains(path))
        return;
    m_known.insert(path);
    m_paths.append(path);
}

QStringList OrderedPathSet::without(const QSet<QString> &others) const
{
    QStringList rest;
    for (const QString &path : m_paths) {
        if (!others.contains(path))
            rest.append(path);
    }
    return rest;
}

bool namesSignableCode(const QString &fileToolOutput)
{
    return fileToolOutput.contains(" x86_64"_L1) || fileToolOutput.contains(" arm64"_L1);
}

void BundleScanner::parseDirectory(const QString &directory, OrderedPathSet &signableSet,
                                   QSet<QString> &setToSubtract, const QStringList &arrayToPassOver)
{
    addIfBundle(directory, signableSet, setToSubtract);
    const auto &files = document.host().files;
    for (const platform::FolderEntry &entry : files.entriesOfDirectory(directory, links)) {
        const QString item = itempath::appending(directory, entry.name);
        if (arrayToPassOver.contains(item))
            continue;
        const QString extension = itempath::lowerExtension(entry.name);
        if (entry.kind.isDirectory) {
            if (extension == "framework"_L1)
                parseFramework(item, signableSet, setToSubtract, arrayToPassOver);
            else
                parseDirectory(item, signableSet, setToSubtract, arrayToPassOver);
        } else if (isSignedUntested(extension)) {
            signableSet.append(item);
        } else if (!isNeverSigned(entry.name) && !deleteIfLeftover(item, entry.name)
                   && !isNeverExamined(extension) && entry.kind.isRegularFile && entry.kind.isExecutable
                   && isMachO(item)) {
            signableSet.append(item);
        }
    }
}

void BundleScanner::addIfBundle(const QString &directory, OrderedPathSet &signableSet,
                                QSet<QString> &setToSubtract)
{
    if (itempath::extension(directory).isEmpty())
        return;
    const auto &files = document.host().files;
    const QString executable = platform::informationText(files, directory, executableKey);
    if (executable.isNull())
        return;
    const QString path = directory + u"/Contents/MacOS/"_s + executable;
    if (!files.isReachable(path))
        return;
    signableSet.append(directory);
    setToSubtract.insert(path);
}

bool BundleScanner::deleteIfLeftover(const QString &file, const QString &fileName)
{
    if (!isLeftover(file, fileName))
        return false;
    document.host().files.removeItem(file).ignore();
    return true;
}

bool BundleScanner::isMachO(const QString &file)
{
    const auto response = document.runTool(fileTool, {u"-b"_s, file});
    return response->status() == 0 && namesSignableCode(response->outputString());
}

void BundleScanner::parseFramework(const QString &framework, OrderedPathSet &signableSet,
                                   QSet<QString> &setToSubtract, const QStringList &arrayToPassOver)
{
    const auto &files = document.host().files;
    for (const QString &name : files.contentsOfDirectory(framework, links)) {
        const QString item = itempath::appending(framework, name);
        if (arrayToPassOver.contains(item))
            continue;
        // The kind asked for is the framework's own, not the entry's: every entry is walked, whatever it is.
        if (!files.kind(framework).isDirectory)
            continue;
        if (name == "Versions"_L1)
            parseVersions(item, signableSet, setToSubtract, arrayToPassOver);
        else
            parseDirectory(item, signableSet, setToSubtract, arrayToPassOver);
    }
}

void BundleScanner::parseVersions(const QString &versions, OrderedPathSet &signableSet,
                                  QSet<QString> &setToSubtract, const QStringList &arrayToPassOver)
{
    const auto &files = document.host().files;
    for (const auto &[name, kind] : files.entriesOfDirectory(versions, links)) {
        const QString version = itempath::appending(versions, name);
        if (arrayToPassOver.contains(version) || name == "Current"_L1 || !kind.isDirectory)
            continue;
        signableSet.append(version);
        const QString executable = platform::informationText(files, version, executableKey,
                                                             platform::BundleLayout::frameworkVersion);
        const QString path = itempath::appending(version, executable);
        if (!executable.isNull() && files.isReachable(path))
            setToSubtract.insert(path);
        parseDirectory(version, signableSet, setToSubtract, arrayToPassOver);
    }
}
