#include "signing/scandecisions.h"

#include "platform/bundle.h"
#include "platform/itempath.h"

#include <algorithm>
#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString executableKey = u"CFBundleExecutable"_s;

// What lies behind a link is found where it lies. Two links to a folder above them would never let the walk
// end.
constexpr auto links = platform::FolderLink::leaveAlone;

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
    static constexpr std::array extensions{"txt"_L1, "h"_L1, "strings"_L1, "rtf"_L1, "scpt"_L1, "rtfd"_L1};
    return std::find(extensions.begin(), extensions.end(), lowerExtension) != extensions.end();
}

/// Why a file is left alone before anything asks what is in it.
std::optional<PassedOver> reasonByEntry(const QString &file, const platform::FolderEntry &entry,
                                        const QString &lowerExtension)
{
    if (entry.name == "PkgInfo"_L1)
        return PassedOver::packageMark;
    if (entry.name == "CodeResources"_L1)
        return PassedOver::seal;
    if (isLeftover(file, entry.name))
        return PassedOver::leftover;
    if (isNeverExamined(lowerExtension))
        return PassedOver::kindNeverExamined;
    if (!entry.kind.isRegularFile)
        return PassedOver::notRegular;
    if (!entry.kind.isExecutable)
        return PassedOver::notExecutable;
    return {};
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

QStringList signingOrder(const OrderedPathSet &signableSet, const QSet<QString> &setToSubtract)
{
    QStringList members = signableSet.without(setToSubtract);
    std::reverse(members.begin(), members.end());
    return members;
}

QStringList pathsToPassOver(const QString &item, const QStringList &skipPaths)
{
    QStringList paths;
    for (const QString &skipped : skipPaths)
        paths.append(itempath::appending(item, skipped));
    return paths;
}

bool namesSignableCode(const QString &fileToolOutput)
{
    return fileToolOutput.contains(" x86_64"_L1) || fileToolOutput.contains(" arm64"_L1);
}

void ScanDecisions::parseDirectory(const QString &directory)
{
    checkBundle(directory);
    for (const platform::FolderEntry &entry : m_files.entriesOfDirectory(directory, links)) {
        const QString item = itempath::appending(directory, entry.name);
        if (isToPassOver(item))
            continue;
        if (!entry.kind.isDirectory)
            parseFile(item, entry);
        else if (itempath::lowerExtension(entry.name) == "framework"_L1)
            parseFramework(item);
        else
            parseDirectory(item);
    }
}

void ScanDecisions::checkBundle(const QString &directory)
{
    if (itempath::extension(directory).isEmpty())
        return;
    const QString executable = platform::informationText(m_files, directory, executableKey);
    if (executable.isNull())
        return;
    const QString path = directory + u"/Contents/MacOS/"_s + executable;
    if (!m_files.isReachable(path))
        return;
    m_watcher.signable(directory);
    m_watcher.mainExecutable(path);
}

void ScanDecisions::parseFile(const QString &file, const platform::FolderEntry &entry)
{
    const QString extension = itempath::lowerExtension(entry.name);
    if (isSignedUntested(extension))
        return m_watcher.signable(file);
    if (const auto reason = reasonByEntry(file, entry, extension))
        return m_watcher.passedOver(file, *reason);
    if (m_watcher.isCode(file))
        m_watcher.signable(file);
    else
        m_watcher.passedOver(file, PassedOver::noCode);
}

void ScanDecisions::parseFramework(const QString &framework)
{
    for (const QString &name : m_files.contentsOfDirectory(framework, links)) {
        const QString item = itempath::appending(framework, name);
        if (isToPassOver(item))
            continue;
        // The kind asked for is the framework's own, not the entry's: every entry is walked, whatever it is.
        if (!m_files.kind(framework).isDirectory)
            continue;
        if (name == "Versions"_L1)
            parseVersions(item);
        else
            parseDirectory(item);
    }
}

void ScanDecisions::parseVersions(const QString &versions)
{
    for (const auto &[name, kind] : m_files.entriesOfDirectory(versions, links)) {
        const QString version = itempath::appending(versions, name);
        if (isToPassOver(version))
            continue;
        if (name == "Current"_L1)
            m_watcher.passedOver(version, PassedOver::currentVersion);
        else if (!kind.isDirectory)
            m_watcher.passedOver(version, PassedOver::noVersionFolder);
        else
            parseVersion(version);
    }
}

void ScanDecisions::parseVersion(const QString &version)
{
    m_watcher.signable(version);
    const QString executable =
        platform::informationText(m_files, version, executableKey, platform::BundleLayout::frameworkVersion);
    const QString path = itempath::appending(version, executable);
    if (!executable.isNull() && m_files.isReachable(path))
        m_watcher.mainExecutable(path);
    parseDirectory(version);
}

bool ScanDecisions::isToPassOver(const QString &item)
{
    if (!m_pathsToPassOver.contains(item))
        return false;
    m_watcher.passedOver(item, PassedOver::pathToSkip);
    return true;
}

} // namespace sealwright
