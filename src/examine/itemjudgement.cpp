// What is wrong with the item as a whole, or with what it is to be signed with.

#include "examine/judgement.h"

#include "examine/rules.h"
#include "formats/codesignature/entitlementsder.h"
#include "formats/fileattributes.h"
#include "formats/review/judge.h"
#include "platform/bundle.h"
#include "platform/itempath.h"
#include "platform/posix/posixfileservice.h"

#include <QDir>
#include <QFileInfo>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace sealwright {

using toolchain::review::Objection;
using toolchain::review::SignatureState;
using toolchain::review::SliceFacts;

namespace examine {

namespace {

bool isBundleKind(ItemKind kind)
{
    return kind == ItemKind::app || kind == ItemKind::plugin || kind == ItemKind::fmplugin;
}

bool isFileKind(ItemKind kind)
{
    return kind == ItemKind::package || kind == ItemKind::diskImage;
}

/// What macOS grants by a provisioning profile alone.
/// Public document: Apple's TN3125, "Inside Code Signing: Provisioning Profiles".
bool isRestricted(const QString &entitlement)
{
    static const QSet<QString> names{u"keychain-access-groups"_s, u"com.apple.application-identifier"_s};
    return entitlement.startsWith("com.apple.developer."_L1) || names.contains(entitlement);
}

/// Whether a neighbour has the same name with its accents written in another way.
bool hasOtherSpelling(const QString &path)
{
    const QFileInfo info(path);
    const auto names = info.dir().entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    const QString name = info.fileName().normalized(QString::NormalizationForm_D);
    return std::count_if(names.cbegin(), names.cend(),
                         [&name](const QString &other) {
                             return other.normalized(QString::NormalizationForm_D) == name;
                         })
        > 1;
}

QVersionNumber versionOf(const QString &app)
{
    const platform::PosixFileService files;
    return QVersionNumber::fromString(platform::informationText(files, app, u"CFBundleVersion"_s));
}

} // namespace

void Judgement::judgeItem()
{
    judgeMissingItem();
    judgeEntitlements();
    judgeCollisions();
    if (isBundleKind(m_examination.kind))
        judgeAge();
    if (!isFileKind(m_examination.kind))
        return;
    const auto attributes = toolchain::readAttributes(m_examination.item);
    if (attributes
        && (attributes->contains("com.apple.FinderInfo") || attributes->contains("com.apple.ResourceFork")))
        find(rule::forbiddenAttribute, Severity::warning, u"."_s,
             u"resource fork, Finder information, or similar detritus not allowed"_s);
}

void Judgement::judgeMissingItem()
{
    if (m_prediction.order.isEmpty() && m_examination.kind == ItemKind::folder)
        find(rule::missingExecutable, Severity::error, u"."_s, u"No signable items found."_s).advice =
            u"The folder holds no code that a run signs. Choose the folder that holds it; code must be made for x86_64 or arm64, and be executable."_s;
    if (m_prediction.droppedMember.isEmpty())
        return;
    const QString dropped = relative(m_prediction.droppedMember);
    for (Finding &finding : m_examination.findings) {
        const bool isAboutItem =
            finding.rule == rule::missingExecutable || finding.rule == rule::invalidInfoPlist;
        if (finding.path == "."_L1 && isAboutItem)
            finding.message += u" (\"%1\" goes unsigned in its place)"_s.arg(dropped);
    }
}

void Judgement::judgeEntitlements()
{
    if (!m_choices.entitlementsError.isEmpty())
        find(rule::invalidEntitlements, Severity::error, u"."_s, m_choices.entitlementsError);
    if (isFileKind(m_examination.kind))
        return;
    if (const auto der = toolchain::codesignature::entitlementsAsDer(m_choices.entitlements); !der)
        find(rule::invalidEntitlements, Severity::error, u"."_s, der.error());
    const auto &code = m_examination.code;
    const bool signsExecutable = std::any_of(code.cbegin(), code.cend(), [](const CodeEntry &entry) {
        return entry.order && entry.facts.isExecutable();
    });
    if (signsExecutable && m_choices.entitlements.value(u"com.apple.security.get-task-allow"_s).toBool())
        find(rule::getTaskAllow, Severity::error, u"."_s, message(Objection::getTaskAllow));
    if (QFileInfo::exists(m_examination.item + u"/Contents/embedded.provisionprofile"_s))
        return;
    for (auto entry = m_choices.entitlements.cbegin(); entry != m_choices.entitlements.cend(); ++entry) {
        if (isRestricted(entry.key()))
            find(rule::restrictedEntitlement, Severity::warning, u"."_s,
                 u"The entitlement %1 needs a provisioning profile."_s.arg(entry.key()));
    }
}

/// Two names that the packing of this run takes for one stop it: an image takes those that differ in case for
/// one, and both packings those that differ in how an accent is written.
void Judgement::judgeCollisions()
{
    if (!isBundleKind(m_examination.kind))
        return;
    const QList<Finding> findings = m_examination.findings; // some are added meanwhile
    for (const Finding &finding : findings) {
        if (finding.rule != rule::nameCollision || m_collected.isInArchive(finding.path))
            continue;
        if (m_choices.packing == Packing::diskImage || hasOtherSpelling(absolute(finding.path)))
            find(
                rule::pathTooLong, Severity::error, finding.path,
                u"macOS takes its name for the same as that of another file in its folder, so the item cannot be packed."_s)
                .advice = rule::advice(rule::nameCollision);
    }
}

void Judgement::judgeAge()
{
    const QString name = itempath::lastComponent(m_examination.item);
    const QString last = u"%1/%2 - Notarized/%3"_s.arg(itempath::folder(m_examination.item),
                                                       itempath::withoutExtension(name), name);
    const QVersionNumber now = versionOf(m_examination.item);
    const QVersionNumber before = versionOf(last);
    if (!now.isNull() && !before.isNull() && now < before)
        find(rule::olderThanLast, Severity::warning, u"."_s,
             u"The version is %1; the item notarized last has %2."_s.arg(now.toString(), before.toString()));
}

} // namespace examine

} // namespace sealwright
