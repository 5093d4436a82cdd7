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

namespace sealwright {

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

bool hasDescription(const QString &bundle)
{
    static const QStringList places{u"Contents/Info.plist"_s, u"Resources/Info.plist"_s, u"Info.plist"_s};
    return std::any_of(places.cbegin(), places.cend(),
                       [&bundle](const QString &place) { return QFileInfo(bundle + u'/' + place).isFile(); });
}

} // namespace

void Judgement::judgeBundles()
{
    for (const auto &[path, read] : m_prediction.bundles)
        judgeBundle(path, read);
}

void Judgement::judgeBundle(const QString &item, const ReadBundle &read)
{
    judgeRoot(item);
    if (!read.bundle)
        return judgeUnreadBundle(item, read.bundle.error());
    if (read.bundle->info.value(u"CFBundleIdentifier"_s).toString().isEmpty())
        find(rule::missingIdentifier, Severity::warning, relative(item), u"The bundle has no identifier."_s);
    judgeContents(item, read);
}

void Judgement::judgeUnreadBundle(const QString &item, const QString &problem)
{
    const QString path = relative(item);
    if (problem == signing::text::ambiguousBundle)
        return void(find(rule::ambiguousBundle, Severity::error, path, problem));
    const auto &code = m_examination.code;
    const bool namesExecutable =
        hasDescription(item) && std::any_of(code.cbegin(), code.cend(), [&path](const CodeEntry &entry) {
            return entry.path == path && !entry.mainExecutable.isEmpty();
        });
    find(namesExecutable ? rule::missingExecutable : rule::invalidInfoPlist, Severity::error, path, problem);
}

void Judgement::judgeContents(const QString &item, const ReadBundle &read)
{
    if (!read.scanError.isEmpty())
        return judgeUnreadContents(item, read.scanError);
    const seal::SealedFolder folder = sealedFolder(*read.bundle);
    for (const seal::ScannedItem &found : read.items) {
        const QString place = folder.base + u'/' + QFile::decodeName(found.path);
        if (found.kind == seal::ItemKind::nestedCode)
            judgeNested(place);
        else if (seal::leadsOut(folder, found.path, found.linkTarget) && !hasErrorAt(relative(place)))
            find(rule::linkLeavesItem, Severity::error, relative(place), signing::text::badLink);
    }
}

/// What cannot be sealed has mostly been told where it lies.
void Judgement::judgeUnreadContents(const QString &item, const QString &problem)
{
    const auto tellsWhy = [](const Finding &finding) {
        return finding.rule == rule::unreadable || finding.rule == rule::pathTooLong;
    };
    if (std::none_of(m_examination.findings.cbegin(), m_examination.findings.cend(), tellsWhy))
        find(rule::unreadable, Severity::error, relative(item), problem);
}

/// Nested code must have a signature before what it lies in is signed: its own, or one of this run.
/// Attributes, where files that are no Mach-O files have theirs, are cleared by the run.
void Judgement::judgeNested(const QString &nested)
{
    const QString path = relative(nested);
    if (isSignedByRun(nested) || hasErrorBelow(path)
        || m_prediction.passedOver.value(nested, PassedOver::noCode) == PassedOver::leftover)
        return;
    const auto code = signing::readSignedCode(nested);
    if (code && (isSignedWithParent(path) || (code->isSigned() && code->kind == signing::CodeKind::machO)))
        return;
    const QString what = code ? signing::text::notSigned : code.error();
    if (!code && namesMissingExecutable(nested))
        return void(find(rule::missingExecutable, Severity::error, path, what));
    CodeEntry entry;
    entry.path = path;
    if (isSkipped(entry))
        return void(find(rule::skippedCode, Severity::error, path, what));
    find(rule::unsignedCode, Severity::error, path, what).advice =
        u"Only code may lie in this folder, and this is none that can be signed. Move it to Contents/Resources, or leave it out of the item."_s;
}

/// Of the path, or of something in it.
bool Judgement::hasErrorBelow(const QString &path) const
{
    const QString below = path + u'/';
    return std::any_of(m_errors.cbegin(), m_errors.cend(),
                       [&](const QString &known) { return known == path || known.startsWith(below); });
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

} // namespace sealwright
