// What codesign says of each bundle that it is handed.

#include "examine/judgement.h"

#include "examine/rules.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/resourceseal/bundlescan.h"
#include "platform/bundle.h"
#include "platform/itempath.h"
#include "platform/posix/posixfileservice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;
namespace signing = toolchain::codesignature;
namespace seal = toolchain::seal;

namespace examine {

namespace {

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

bool isFinderMark(const QString &name)
{
    return name == ".DS_Store"_L1 || name == "Icon\r"_L1;
}

/// A folder that says that it is a bundle, and has not the file that it names.
bool namesMissingExecutable(const QString &folder)
{
    const platform::PosixFileService files;
    const QString executable = platform::informationText(files, folder, u"CFBundleExecutable"_s);
    return !executable.isEmpty() && !QFileInfo::exists(folder + u"/Contents/MacOS/"_s + executable);
}

bool leadsIntoCurrentVersion(const QString &link)
{
    const QFileInfo info(link);
    return info.isSymLink() && QFile::symLinkTarget(link).contains("/Versions/"_L1);
}

} // namespace

void Judgement::judgeBundles()
{
    for (const QString &item : m_prediction.order) {
        if (QFileInfo(item).isDir() && !QFileInfo(item).isSymLink())
            judgeBundle(item);
    }
}

void Judgement::judgeBundle(const QString &item)
{
    const QString path = relative(item);
    judgeRoot(item);
    const auto bundle = signing::readCodeBundle(item);
    if (bundle) {
        if (bundle->info.value(u"CFBundleIdentifier"_s).toString().isEmpty())
            find(rule::missingIdentifier, Severity::warning, path, u"The bundle has no identifier."_s);
        return judgeContents(item, bundle->base, bundle->executable,
                             bundle->layout == signing::BundleLayout::Flat);
    }
    if (bundle.error() == signing::text::ambiguousBundle)
        return find(rule::ambiguousBundle, Severity::error, path, bundle.error());
    const bool hasInfo = QFileInfo(item + u"/Contents/Info.plist"_s).isFile()
        || QFileInfo(item + u"/Resources/Info.plist"_s).isFile()
        || QFileInfo(item + u"/Info.plist"_s).isFile();
    const bool namesExecutable = hasInfo
        && std::any_of(m_examination.code.cbegin(), m_examination.code.cend(), [&](const CodeEntry &entry) {
                                     return entry.path == path && !entry.mainExecutable.isEmpty();
                                 });
    find(namesExecutable ? rule::missingExecutable : rule::invalidInfoPlist, Severity::error, path,
         bundle.error());
}

void Judgement::judgeContents(const QString &item, const QString &base, const QString &executable,
                              bool isFlat)
{
    const seal::Layout layout = isFlat ? seal::Layout::Flat : seal::Layout::WithResources;
    const seal::SealedFolder folder{base, layout, QFile::encodeName(executable)};
    const auto scanned = seal::scanFolder(folder, seal::firstRules(layout), seal::secondRules(layout));
    if (!scanned) {
        const auto isUnreadable = [](const Finding &finding) { return finding.rule == rule::unreadable; };
        if (std::none_of(m_examination.findings.cbegin(), m_examination.findings.cend(), isUnreadable))
            find(rule::unreadable, Severity::error, relative(item), scanned.error());
        return;
    }
    for (const seal::ScannedItem &found : *scanned) {
        const QString place = base + u'/' + QFile::decodeName(found.path);
        if (found.kind == seal::ItemKind::NestedCode)
            judgeNested(place);
        else if (found.kind == seal::ItemKind::Link && seal::leadsOut(folder, found.path, found.linkTarget)
                 && !hasErrorAt(relative(place)))
            find(rule::linkLeavesItem, Severity::error, relative(place), signing::text::badLink);
    }
}

/// Nested code must have a signature before what it lies in is signed: its own, or one of this run.
/// Attributes, where files that are no Mach-O files have theirs, are cleared by the run.
void Judgement::judgeNested(const QString &nested)
{
    if (isSignedByRun(nested)
        || m_prediction.passedOver.value(nested, PassedOver::noCode) == PassedOver::leftover)
        return;
    const auto code = signing::readSignedCode(nested);
    if (code && code->isSigned() && code->kind == signing::CodeKind::MachO)
        return;
    const QString path = relative(nested);
    const QString below = path + u'/';
    for (const QString &known : std::as_const(m_errors)) {
        if (known == path || known.startsWith(below))
            return;
    }
    CodeEntry entry;
    entry.path = path;
    const QString what = code ? signing::text::notSigned : code.error();
    if (!code && namesMissingExecutable(nested))
        return find(rule::missingExecutable, Severity::error, path, what);
    find(isSkipped(entry) ? rule::skippedCode : rule::unsignedCode, Severity::error, path, what);
}

bool Judgement::isSignedByRun(const QString &absolutePath) const
{
    const QString path = relative(absolutePath);
    if (m_order.contains(path))
        return true;
    // A framework is signed by its version folder.
    const auto bundle = signing::readCodeBundle(absolutePath);
    return bundle && m_order.contains(relative(bundle->base));
}

void Judgement::judgeRoot(const QString &item)
{
    const bool isVersion = itempath::lastComponent(itempath::folder(item)) == "Versions"_L1;
    const QString root = isVersion ? itempath::folder(itempath::folder(item)) : item;
    if (!isVersion && !QFileInfo(root + u"/Contents"_s).isDir())
        return;
    const QString kept = isVersion ? u"Versions"_s : u"Contents"_s;
    for (const QString &name : entriesOf(root)) {
        const QString place = root + u'/' + name;
        const bool isAllowed =
            name == kept || isFinderMark(name) || (isVersion && leadsIntoCurrentVersion(place));
        if (!isAllowed && !hasErrorAt(relative(place)))
            find(rule::unsealedRoot, Severity::error, relative(place),
                 isVersion ? signing::text::unsealedFrameworkRoot : signing::text::unsealedRoot);
    }
}

} // namespace examine
