#include "examine/judgement.h"

#include "examine/rules.h"
#include "platform/itempath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::examine {

namespace {

/// Of what the run signs, and the walk could not tell what it is.
QString kindOfUnlisted(const QString &path, ItemKind item)
{
    if (path == "."_L1 && item == ItemKind::app)
        return u"app"_s;
    if (path == "."_L1)
        return item == ItemKind::diskImage ? u"archive"_s : u"bundle"_s;
    const QString extension = itempath::lowerExtension(path);
    if (extension == "dylib"_L1)
        return u"library"_s;
    return extension == "wflow"_L1 ? u"script"_s : u"executable"_s;
}

} // namespace

Judgement::Judgement(Examination &examination, const Prediction &prediction, const Choices &choices,
                     const Collector &collected)
    : m_examination(examination)
    , m_prediction(prediction)
    , m_choices(choices)
    , m_collected(collected)
{
    for (const Finding &finding : examination.findings) {
        if (finding.severity == Severity::error)
            m_errors.insert(finding.path);
    }
}

void Judgement::run()
{
    number();
    addEntriesOfTheRun();
    judgeCode();
    judgeBundles();
    judgeItem();
    keepScriptsThatCount();
    std::stable_sort(m_examination.code.begin(), m_examination.code.end(),
                     [](const CodeEntry &a, const CodeEntry &b) { return a.path < b.path; });
}

QString Judgement::relative(const QString &absolutePath) const
{
    return absolutePath == m_examination.item ? u"."_s : absolutePath.mid(m_examination.item.size() + 1);
}

QString Judgement::absolute(const QString &path) const
{
    return path == "."_L1 ? m_examination.item : m_examination.item + u'/' + path;
}

Finding &Judgement::find(const QString &ruleName, Severity severity, const QString &path,
                         const QString &message, const QString &architecture)
{
    m_examination.findings.append({ruleName, severity, path, architecture, message, rule::advice(ruleName)});
    if (severity == Severity::error)
        m_errors.insert(path);
    return m_examination.findings.last();
}

bool Judgement::hasErrorAt(const QString &path) const
{
    return m_errors.contains(path);
}

// The run

void Judgement::number()
{
    int next = 1;
    for (const QString &item : m_prediction.order)
        m_order.insert(relative(item), next++);
    for (CodeEntry &entry : m_examination.code) {
        if (const auto place = m_order.constFind(entry.path); place != m_order.cend())
            entry.order = *place;
        else
            entry.reason = text(reasonFor(entry));
    }
}

void Judgement::addEntriesOfTheRun()
{
    QSet<QString> known;
    for (const CodeEntry &entry : std::as_const(m_examination.code))
        known.insert(entry.path);
    for (auto place = m_order.cbegin(); place != m_order.cend(); ++place) {
        if (known.contains(place.key()))
            continue;
        CodeEntry entry;
        entry.path = place.key();
        entry.kind = kindOfUnlisted(entry.path, m_examination.kind);
        entry.order = *place;
        m_examination.code.append(entry);
    }
}

Unsigned Judgement::reasonFor(const CodeEntry &entry) const
{
    const bool isItem = entry.path == "."_L1;
    if (m_examination.kind == ItemKind::package || m_examination.kind == ItemKind::diskImage)
        return isItem ? Unsigned::isPackage : Unsigned::liesInArchive;
    if (m_collected.isInArchive(entry.path))
        return Unsigned::liesInArchive;
    if (isSignedWithParent(entry.path))
        return Unsigned::isSignedWithParent;
    if (absolute(entry.path) == m_prediction.droppedMember)
        return Unsigned::isDropped;
    if (m_prediction.unsignedMembers.contains(absolute(entry.path)))
        return Unsigned::onlyItemIsSigned;
    return reasonByPath(entry.path).value_or(reasonByKind(entry));
}

/// A reason that is in the path itself, or in a folder above.
std::optional<Unsigned> Judgement::reasonByPath(const QString &path) const
{
    QString above;
    for (const QString &name : path.split(u'/')) {
        above += above.isEmpty() ? name : u'/' + name;
        if (name.startsWith(u'.') && name != "."_L1)
            return Unsigned::isHidden;
        const auto passed = m_prediction.passedOver.constFind(absolute(above));
        if (passed != m_prediction.passedOver.cend())
            return unsignedBecause(*passed);
        if (itempath::lowerExtension(itempath::folder(above)) == "framework"_L1 && above == path)
            return Unsigned::liesInFlatFramework;
    }
    return {};
}

Unsigned Judgement::reasonByKind(const CodeEntry &entry)
{
    if (entry.kind == "archive"_L1)
        return Unsigned::isArchive;
    if (entry.kind == "script"_L1)
        return Unsigned::isForOtherProcessors;
    if (!entry.mainExecutable.isEmpty() || entry.kind == "app"_L1 || entry.kind == "bundle"_L1)
        return Unsigned::hasNoExecutable;
    const auto &slices = entry.facts.slices;
    const bool isNamed = std::any_of(slices.cbegin(), slices.cend(), [](const auto &slice) {
        return slice.architecture.startsWith("x86_64"_L1) || slice.architecture.startsWith("arm64"_L1);
    });
    return isNamed ? Unsigned::isNotExecutable : Unsigned::isForOtherProcessors;
}

/// With --deep codesign signs the nested code of each bundle, whether the run finds it or not.
bool Judgement::isSignedWithParent(const QString &path) const
{
    return m_prediction.signedWithParents.contains(absolute(path));
}

bool Judgement::isSkipped(const CodeEntry &entry) const
{
    if (m_prediction.unsignedMembers.contains(absolute(entry.path)))
        return true;
    QString above;
    for (const QString &name : entry.path.split(u'/')) {
        above += above.isEmpty() ? name : u'/' + name;
        const auto passed = m_prediction.passedOver.constFind(absolute(above));
        if (passed != m_prediction.passedOver.cend() && *passed == PassedOver::pathToSkip)
            return true;
    }
    return false;
}

void Judgement::keepScriptsThatCount()
{
    const auto doesNotCount = [this](const CodeEntry &entry) {
        return entry.kind == "script"_L1 && !entry.order && !hasErrorAt(entry.path);
    };
    m_examination.code.removeIf(doesNotCount);
}

} // namespace sealwright::examine
