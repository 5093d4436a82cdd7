#include "ui/outcome.h"
#include "notarization/pollinginfo.h"
#include "notarization/pollingsteps.h"
#include "notarization/staplingsteps.h"

#include "ui/steplistmodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString titleOfRefusal = u"Notarization Failed"_s; // as its sheet has it, which scripts do not see
const QString seeTheLog = u"See the log for details."_s;
constexpr qsizetype mostOfTime = 20; // characters
const QString refusal = u"rejected"_s; // in the text that tells of the service's refusal

const StepList::Row *firstIn(const StepList &steps, StepState state)
{
    const auto &rows = steps.rows();
    const auto row =
        std::find_if(rows.cbegin(), rows.cend(), [state](const auto &each) { return each.state == state; });
    return row == rows.cend() ? nullptr : &*row;
}

/// The report of a refusal is the run's latest error.
bool isRefusal(const StepList::Row &row, const QString &errorLine)
{
    return row.step == step::awaitResult
        && (verdict(errorLine) == "invalid"_L1 || errorLine.contains(refusal, Qt::CaseInsensitive));
}

/// The rest of a report is in the log.
QString firstLine(const QString &text)
{
    const QString whole = text.trimmed();
    const QString first = whole.section(u'\n', 0, 0).trimmed();
    return first.size() < whole.size() ? first + u" …"_s : first;
}

/// The log's numbers of errors name its records, which nobody can look up in a sentence.
QString withoutRecord(QString line)
{
    static const QRegularExpression record(u"^Error \\d{7,} "_s);
    return line.replace(record, u"Error "_s);
}

QString reasonOf(const LastWords &words)
{
    const bool isTold = !words.alertText.isEmpty() && words.alertText != seeTheLog;
    return isTold ? words.alertText : firstLine(withoutRecord(words.errorLine));
}

QString reasonOfRefusal(const LastWords &words)
{
    return words.finding.isEmpty()
        ? QObject::tr("The notary service has refused the item. Its report is in the log.")
        : words.finding;
}

RunOutcome waiting(const StepList &steps)
{
    return {RunOutcome::Kind::waiting, QObject::tr("Waiting for the verdict"), waitText(*steps.wait())};
}

RunOutcome failure(const StepList::Row &row, const LastWords &words)
{
    if (isRefusal(row, words.errorLine))
        return {RunOutcome::Kind::refused, titleOfRefusal, reasonOfRefusal(words)};
    const QString title = words.alertTitle.isEmpty() ? stepName(row.step) : words.alertTitle;
    return {RunOutcome::Kind::failed, title, reasonOf(words)};
}

RunOutcome success(const StepList &steps, const LastWords &words)
{
    if (steps.rows().last().step == step::staple)
        return {RunOutcome::Kind::notarized, QObject::tr("Notarized"),
                QObject::tr("%1 is notarized and stapled.").arg(words.item)};
    return {RunOutcome::Kind::isSigned, QObject::tr("Signed"), QObject::tr("%1 is signed.").arg(words.item)};
}

} // namespace

QString findingIn(const QString &issues)
{
    QStringList errors;
    for (const QJsonValue value : QJsonDocument::fromJson(issues.toUtf8()).array()) {
        const QJsonObject issue = value.toObject();
        const QString file = issue.value(u"path"_s).toString().section(u'/', -1);
        const QString message = issue.value(u"message"_s).toString();
        if (issue.value(u"severity"_s).toString() == "error"_L1 && !message.isEmpty())
            errors.append(file.isEmpty() ? message : file + u": "_s + message);
    }
    if (errors.size() < 2)
        return errors.value(0);
    return QObject::tr("%1 (and %2 more, under Issues)").arg(errors.first()).arg(errors.size() - 1);
}

RunOutcome outcomeOf(const StepList &steps, const LastWords &words)
{
    if (steps.rows().isEmpty())
        return {};
    if (steps.running())
        return steps.wait() ? waiting(steps) : RunOutcome{};
    if (const StepList::Row *const failed = firstIn(steps, StepState::failed))
        return failure(*failed, words);
    if (firstIn(steps, StepState::cancelled))
        return {RunOutcome::Kind::cancelled, QObject::tr("Cancelled"), words.alertText};
    if (steps.rows().last().state == StepState::done)
        return success(steps, words);
    return {};
}

theme::Meaning meaningOf(RunOutcome::Kind kind)
{
    switch (kind) {
    case RunOutcome::Kind::notarized:
    case RunOutcome::Kind::isSigned:
        return theme::Meaning::good;
    case RunOutcome::Kind::refused:
    case RunOutcome::Kind::failed:
        return theme::Meaning::bad;
    case RunOutcome::Kind::cancelled:
        return theme::Meaning::caution;
    case RunOutcome::Kind::waiting:
        return theme::Meaning::underway;
    case RunOutcome::Kind::none:
        break;
    }
    return theme::Meaning::quiet;
}

StepState stateOf(RunOutcome::Kind kind)
{
    switch (kind) {
    case RunOutcome::Kind::notarized:
    case RunOutcome::Kind::isSigned:
        return StepState::done;
    case RunOutcome::Kind::refused:
    case RunOutcome::Kind::failed:
        return StepState::failed;
    case RunOutcome::Kind::cancelled:
        return StepState::cancelled;
    case RunOutcome::Kind::waiting:
        return StepState::running;
    case RunOutcome::Kind::none:
        break;
    }
    return StepState::waiting;
}

qsizetype lengthOfTime(QStringView line)
{
    static const QRegularExpression time(u"^\\d\\d:\\d\\d:\\d\\d[.,]\\d+: "_s);
    return time.match(line.left(mostOfTime).toString()).capturedLength();
}

QString withoutTime(QStringView line)
{
    return line.mid(lengthOfTime(line)).trimmed().toString();
}

} // namespace sealwright
