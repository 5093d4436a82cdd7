#include "examine/judgement.h"

#include "examine/rules.h"
#include "platform/itempath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace examine {

namespace {

QString text(PassedOver reason)
{
    switch (reason) {
    case PassedOver::pathToSkip:
        return u"is among the paths to skip"_s;
    case PassedOver::currentVersion:
        return u"is reached by the version that it leads to"_s;
    case PassedOver::noVersionFolder:
        return u"is no folder among a framework's versions"_s;
    case PassedOver::packageMark:
    case PassedOver::seal:
        return u"has a name that is never signed"_s;
    case PassedOver::leftover:
        return u"is a leftover that is deleted from the copy"_s;
    case PassedOver::kindNeverExamined:
        return u"has an extension of texts, which are never examined"_s;
    case PassedOver::notRegular:
        return u"is no regular file"_s;
    case PassedOver::notExecutable:
        return u"is not executable"_s;
    case PassedOver::noCode:
        return u"is no code for x86_64 or arm64"_s;
    }
    return {};
}

QString kindOfUnlisted(const QString &path)
{
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

void Judgement::find(const QString &ruleName, Severity severity, const QString &path, const QString &message,
                     const QString &architecture)
{
    m_examination.findings.append({ruleName, severity, path, architecture, message, rule::advice(ruleName)});
    if (severity == Severity::error)
        m_errors.insert(path);
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
        if (m_collected.isInArchive(entry.path))
            entry.reason = u"lies in an archive"_s;
        else if (const auto place = m_order.constFind(entry.path); place != m_order.cend())
            entry.order = *place;
        else
            entry.reason = reasonFor(entry);
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
        entry.kind = entry.path == "."_L1 ? u"bundle"_s : kindOfUnlisted(entry.path);
        entry.order = *place;
        m_examination.code.append(entry);
    }
}

QString Judgement::reasonFor(const CodeEntry &entry) const
{
    if (m_examination.kind == ItemKind::package || m_examination.kind == ItemKind::diskImage)
        return entry.path == "."_L1 ? u"is signed by productsign"_s : u"lies in an archive"_s;
    if (absolute(entry.path) == m_prediction.droppedMember)
        return u"is left out in the place of the item, whose own executable is missing"_s;
    if (m_prediction.unsignedMembers.contains(absolute(entry.path)))
        return u"only the item itself is to be signed"_s;
    const QString byPath = reasonByPath(entry.path);
    if (!byPath.isEmpty())
        return byPath;
    if (entry.kind == "archive"_L1)
        return u"is no code itself"_s;
    if (entry.kind == "script"_L1)
        return text(PassedOver::noCode);
    if (!entry.mainExecutable.isEmpty() || entry.kind == "app"_L1 || entry.kind == "bundle"_L1)
        return u"has no file at its CFBundleExecutable"_s;
    const auto isNamed = [](const auto &slice) {
        return slice.architecture.startsWith("x86_64"_L1) || slice.architecture.startsWith("arm64"_L1);
    };
    const auto &slices = entry.facts.slices;
    if (std::none_of(slices.cbegin(), slices.cend(), isNamed))
        return text(PassedOver::noCode);
    return text(PassedOver::notExecutable);
}

/// A reason that is in the path itself, or in a folder above.
QString Judgement::reasonByPath(const QString &path) const
{
    QString above;
    for (const QString &name : path.split(u'/')) {
        above += above.isEmpty() ? name : u'/' + name;
        if (name.startsWith(u'.') && name != "."_L1)
            return u"is hidden, and hidden files are not looked at"_s;
        const auto passed = m_prediction.passedOver.constFind(absolute(above));
        if (passed != m_prediction.passedOver.cend())
            return text(*passed);
        if (itempath::lowerExtension(itempath::folder(above)) == "framework"_L1 && above == path)
            return u"lies at the top of a framework without versions"_s;
    }
    return {};
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

} // namespace examine
