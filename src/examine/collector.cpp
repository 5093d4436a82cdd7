#include "examine/collector.h"

#include "examine/rules.h"
#include "formats/appledouble.h"
#include "formats/review/containers.h"
#include "formats/review/verifying.h"
#include "platform/bundle.h"
#include "platform/itempath.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

using toolchain::review::CodeFacts;
using toolchain::review::LinkTarget;
using toolchain::review::Objection;
using toolchain::review::WalkFile;
using toolchain::review::WalkPlace;

namespace examine {

namespace {

// Apple's <mach-o/loader.h>.
constexpr quint32 executableFile = 2;
constexpr quint32 library = 6;
constexpr quint32 dynamicLinker = 7;
constexpr quint32 loadableBundle = 8;
constexpr quint32 kernelExtension = 11;

QString kindOf(const CodeFacts &facts)
{
    if (facts.slices.isEmpty())
        return u"object"_s;
    switch (facts.slices.first().fileType) {
    case executableFile:
        return u"executable"_s;
    case library:
    case dynamicLinker:
        return u"library"_s;
    case loadableBundle:
    case kernelExtension:
        return u"loadable"_s;
    default:
        return u"object"_s;
    }
}

QString nameOf(const WalkPlace &place)
{
    return itempath::lastComponent(place.file);
}

bool isVersionFolder(const WalkPlace &place)
{
    const QString versions = itempath::folder(place.file);
    return itempath::lastComponent(versions) == "Versions"_L1 && nameOf(place) != "Current"_L1
        && itempath::lowerExtension(itempath::folder(versions)) == "framework"_L1;
}

QString joined(const WalkPlace &place, const QString &rest)
{
    return place.path == "."_L1 ? rest : place.path + u'/' + rest;
}

/// Seals are property lists. What is not UTF-8 has become the sign for that.
bool isHeldByLists(QChar character)
{
    const char16_t unit = character.unicode();
    const bool isControl = unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r';
    return !isControl && character != QChar::ReplacementCharacter;
}

/// Whether no other name of the same folder can be the same to macOS.
bool isPlain(const QString &name)
{
    return std::none_of(name.cbegin(), name.cend(), [](QChar character) {
        return character.unicode() >= 0x80 || (character >= u'A' && character <= u'Z');
    });
}

/// What macOS's usual file systems take for the same name.
QString folded(const QString &name)
{
    return name.normalized(QString::NormalizationForm_D).toCaseFolded();
}

QString ruleForContainer(Objection objection)
{
    if (objection == Objection::notDeveloperId)
        return rule::notDeveloperId;
    return objection == Objection::noTimestamp ? rule::noTimestamp : rule::signatureInvalid;
}

} // namespace

Collector::Collector(Examination &examination, const platform::FileService &files, Sizes sizes)
    : m_examination(examination)
    , m_files(files)
    , m_sizes(sizes)
    , m_ownDepth(examination.kind == ItemKind::package || examination.kind == ItemKind::diskImage ? 1 : 0)
{
}

bool Collector::isInArchive(const QString &path) const
{
    for (const QString &archive : m_archives) {
        if (path.startsWith(archive + u'/'))
            return true;
    }
    return false;
}

void Collector::folder(const WalkPlace &place, const QStringList &names)
{
    checkNames(place, names);
    if (!place.isInArchive())
        checkCharacters(place, names);
    checkLength(place);
    if (place.isInArchive()) {
        const auto bundle = toolchain::review::bundleAt(place.file, names);
        if (!bundle.executable.isEmpty()) {
            m_folders.insert(bundle.executable, bundle.folder);
            m_links.add(bundle.folder);
        }
        if (!bundle.executable.isEmpty() && !names.contains(u"Contents"_s) && !isVersionFolder(place))
            return addBundle(place, u"bundle"_s, bundle.executable.mid(place.file.size() + 1));
    }
    if (isVersionFolder(place))
        return addBundle(place, u"framework"_s,
                         platform::informationText(m_files, place.file, u"CFBundleExecutable"_s,
                                                   platform::BundleLayout::frameworkVersion));
    const bool mayBeBundle = names.contains(u"Contents"_s)
        && (place.path == "."_L1 ? m_examination.kind != ItemKind::folder
                                 : !itempath::extension(place.file).isEmpty());
    if (!mayBeBundle)
        return;
    const QString executable = platform::informationText(m_files, place.file, u"CFBundleExecutable"_s);
    const QString kind =
        itempath::lowerExtension(place.path == "."_L1 ? m_examination.item : place.file) == "app"_L1
        ? u"app"_s
        : u"bundle"_s;
    if (!executable.isEmpty() || place.path == "."_L1)
        addBundle(place, kind, executable.isEmpty() ? QString() : u"Contents/MacOS/"_s + executable);
}

void Collector::addBundle(const WalkPlace &place, const QString &kind, const QString &executable)
{
    CodeEntry entry;
    entry.path = place.path;
    entry.kind = kind;
    const auto layout =
        kind == "framework"_L1 ? platform::BundleLayout::frameworkVersion : platform::BundleLayout::contents;
    entry.identifier = platform::informationText(m_files, place.file, u"CFBundleIdentifier"_s, layout);
    entry.version = platform::informationText(m_files, place.file, u"CFBundleShortVersionString"_s, layout);
    entry.build = platform::informationText(m_files, place.file, u"CFBundleVersion"_s, layout);
    if (!executable.isEmpty()) {
        entry.mainExecutable = joined(place, executable);
        m_byExecutable.insert(entry.mainExecutable, m_examination.code.size());
    }
    m_examination.code.append(entry);
}

void Collector::machO(const WalkFile &file)
{
    take(file);
    CodeFacts facts = toolchain::review::readCodeFacts(file.place.file, m_store);
    if (file.place.isInArchive()) // it stays as it is, and is gone when the walk goes on
        toolchain::review::verifySignatures(m_folders.value(file.place.file, file.place.file), facts,
                                            m_store);
    if (const auto bundle = m_byExecutable.constFind(file.place.path); bundle != m_byExecutable.cend()) {
        m_examination.code[*bundle].facts = facts;
        return;
    }
    CodeEntry entry;
    entry.path = file.place.path;
    entry.kind = kindOf(facts);
    entry.facts = facts;
    m_examination.code.append(entry);
}

void Collector::script(const WalkFile &file)
{
    take(file);
    constexpr mode_t executable = 0111;
    const bool isMain = m_byExecutable.contains(file.place.path);
    if (isMain || (file.mode() & executable) == 0 || file.place.archiveDepth > m_ownDepth)
        return;
    CodeEntry entry;
    entry.path = file.place.path;
    entry.kind = u"script"_s;
    m_examination.code.append(entry);
}

void Collector::file(const WalkFile &file)
{
    take(file);
}

void Collector::take(const WalkFile &file)
{
    checkLength(file.place);
    checkAttributes(file);
    if (m_sizes == Sizes::counted && !file.place.isInArchive())
        m_examination.size += file.size();
}

void Collector::link(const WalkPlace &place, const QString &target)
{
    checkLength(place);
    switch (judge(place, target)) {
    case LinkTarget::good:
        return;
    case LinkTarget::nowhere:
        return find(rule::brokenLink, Severity::error, place.path,
                    u"invalid destination for symbolic link in bundle: \"%1\" does not exist"_s.arg(target));
    case LinkTarget::outside:
        return find(
            rule::linkLeavesItem, Severity::error, place.path,
            u"invalid destination for symbolic link in bundle: \"%1\" is not part of the item"_s.arg(target));
    }
}

/// In an archive only the links of bundles count, which are sealed as they are.
LinkTarget Collector::judge(const WalkPlace &place, const QString &target) const
{
    if (place.isInArchive())
        return m_links.judge(place.file, target).value_or(LinkTarget::good);
    return toolchain::review::judgeLink(m_examination.item, place.path, target);
}

void Collector::special(const WalkPlace &place)
{
    find(rule::unreadable, Severity::error, place.path, u"neither a file nor a folder nor a link"_s);
}

void Collector::unreadable(const WalkPlace &place, const QString &reason)
{
    m_examination.unread.append(place.path);
    find(rule::unreadable, Severity::error, place.path, reason);
}

/// An image or a package within the item has a signature of its own.
void Collector::judgeContainer(const WalkFile &file)
{
    for (const Objection objection : toolchain::review::nestedFacts(file.place.file, m_store).objections)
        find(ruleForContainer(objection), Severity::error, file.place.path, message(objection));
}

void Collector::enterArchive(const WalkFile &file)
{
    if (file.place.path != "."_L1) {
        m_archives.append(file.place.path);
        judgeContainer(file);
    }
    CodeEntry entry;
    entry.path = file.place.path;
    entry.kind = u"archive"_s;
    m_openArchives.append(m_examination.code.size());
    m_examination.code.append(entry);
}

void Collector::leaveArchive(const WalkFile &file)
{
    const qsizetype index = m_openArchives.takeLast();
    const bool isEmpty = index == m_examination.code.size() - 1;
    if (isEmpty && file.place.path != "."_L1)
        m_examination.code.removeLast(); // nothing in it is code
}

void Collector::tooDeep(const WalkFile &file)
{
    find(rule::nestedArchiveTooDeep, Severity::warning, file.place.path,
         u"The archive lies in too many others to be looked into."_s);
}

void Collector::damagedArchive(const WalkFile &file, const QString &reason)
{
    if (file.place.path != "."_L1)
        return; // it is packed with whatever it holds
    m_examination.unread.append(file.place.path);
    find(rule::damagedCode, Severity::error, file.place.path,
         u"The archive cannot be read: %1."_s.arg(reason));
}

void Collector::checkNames(const WalkPlace &place, const QStringList &names)
{
    if (std::all_of(names.cbegin(), names.cend(), isPlain))
        return;
    QSet<QString> known;
    for (const QString &name : names) {
        const QString key = folded(name);
        if (known.contains(key))
            find(
                rule::nameCollision, Severity::warning, joined(place, name),
                u"Another item of this folder differs in nothing but the case of letters or the way accents are written."_s);
        known.insert(key);
    }
}

void Collector::checkCharacters(const WalkPlace &place, const QStringList &names)
{
    for (const QString &name : names) {
        if (!std::all_of(name.cbegin(), name.cend(), isHeldByLists))
            find(
                rule::pathTooLong, Severity::error, joined(place, name),
                u"The name is not UTF-8 or has control characters, so neither a seal nor macOS can hold it."_s,
                u"Rename it."_s);
    }
}

void Collector::checkLength(const WalkPlace &place)
{
    constexpr qsizetype mostBytesOfAUnit = 3; // of UTF-16, in UTF-8
    if ((place.path.size() + 1 + m_examination.item.size()) * mostBytesOfAUnit
        <= toolchain::review::longestPath)
        return;
    const qsizetype length =
        place.path.toUtf8().size() + 1 + itempath::lastComponent(m_examination.item).toUtf8().size();
    if (length > toolchain::review::longestPath)
        find(rule::pathTooLong, Severity::error, place.path, toolchain::review::tooLongText(length));
}

void Collector::checkAttributes(const WalkFile &file)
{
    if (!file.place.isInArchive() || !nameOf(file.place).startsWith("._"_L1))
        return;
    const auto attributes = toolchain::appledouble::attributesIn(file.beginning);
    if (attributes
        && (attributes->contains("com.apple.FinderInfo") || attributes->contains("com.apple.ResourceFork")))
        find(rule::forbiddenAttribute, Severity::warning, file.place.path,
             u"resource fork, Finder information, or similar detritus not allowed"_s);
}

void Collector::find(const QString &ruleName, Severity severity, const QString &path, const QString &message,
                     const QString &advice)
{
    m_examination.findings.append(
        {ruleName, severity, path, {}, message, advice.isEmpty() ? rule::advice(ruleName) : advice});
}

} // namespace examine

} // namespace sealwright
