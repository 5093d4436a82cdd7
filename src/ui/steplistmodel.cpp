#include "ui/steplistmodel.h"

#include "notarization/pollingsteps.h"
#include "notarization/uploadstep.h"
#include "ui/progresstext.h"
#include "ui/shown.h"

#include <QFont>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qint64 secondsPerMinute = 60;
constexpr qint64 secondsPerHour = 3600;

QString twoDigits(qint64 number)
{
    return QString::number(number).rightJustified(2, u'0');
}

} // namespace

QString durationText(qint64 seconds)
{
    const qint64 hours = seconds / secondsPerHour;
    const qint64 minutes = seconds % secondsPerHour / secondsPerMinute;
    const QString end = u':' + twoDigits(seconds % secondsPerMinute);
    return hours > 0 ? QString::number(hours) + u':' + twoDigits(minutes) + end
                     : QString::number(minutes) + end;
}

QString waitText(const StepList::Wait &wait)
{
    const QString next = wait.nextPoll.isValid()
        ? QObject::tr("Next check at %1").arg(wait.nextPoll.toString(u"HH:mm:ss"_s))
        : QObject::tr("Checking now");
    if (wait.polls == 0)
        return next;
    const QString checks =
        wait.polls == 1 ? QObject::tr("1 check") : QObject::tr("%1 checks").arg(wait.polls);
    const QString failed = wait.failures == 0 ? QString() : QObject::tr(", %1 failed").arg(wait.failures);
    return next + u" · "_s + checks + failed;
}

StepListModel::StepListModel(const StepList &steps, QObject *parent)
    : QAbstractListModel(parent)
    , m_steps(&steps)
{
    connect(&steps, &Observable::changed, this, &StepListModel::refresh);
    refresh();
}

void StepListModel::setService(Service service)
{
    if (std::exchange(m_service, service) != service && !m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(static_cast<int>(m_rows.size()) - 1));
}

QString StepListModel::nameOf(const Step &step) const
{
    if (m_service == Service::ofThisMachine && step == step::upload)
        return tr("Upload to this machine's service");
    if (m_service == Service::ofThisMachine && step == step::awaitResult)
        return tr("Wait for its result");
    return shown(stepName(step));
}

int StepListModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return static_cast<int>(m_rows.size()) + (m_waitText.isNull() ? 0 : 1);
}

QVariant StepListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (index.row() >= m_rows.size())
        return waitData(role);
    const StepList::Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return nameOf(row.step);
    case Qt::AccessibleTextRole:
        return spokenText(row);
    case Qt::ToolTipRole:
        return row.began.isValid() ? tr("Began at %1").arg(row.began.toString(u"HH:mm:ss"_s)) : QVariant();
    case stateRole:
        return QVariant::fromValue(row.state);
    case durationRole:
        return durationText(row);
    case partsRole:
        return partsText(row);
    default:
        return {};
    }
}

QVariant StepListModel::waitData(int role) const
{
    return role == Qt::DisplayRole || role == Qt::AccessibleTextRole ? m_waitText : QVariant();
}

QString StepListModel::durationText(const StepList::Row &row) const
{
    return m_steps && row.began.isValid() ? sealwright::durationText(m_steps->duration(row)) : QString();
}

/// Once a step is done, its time says more.
QString StepListModel::partsText(const StepList::Row &row) const
{
    return m_steps && row.state != StepState::done ? progresstext::parts(row.parts, m_steps->duration(row))
                                                   : QString();
}

QString StepListModel::spokenText(const StepList::Row &row) const
{
    QStringList texts{nameOf(row.step) + u": "_s + shown(stateName(row.state))};
    for (const QString &more : {partsText(row), durationText(row)}) {
        if (!more.isEmpty())
            texts.append(more);
    }
    return texts.join(u", "_s);
}

QModelIndex StepListModel::running() const
{
    const auto row = std::find_if(m_rows.cbegin(), m_rows.cend(), [](const StepList::Row &candidate) {
        return candidate.state == StepState::running;
    });
    return row == m_rows.cend() ? QModelIndex() : index(static_cast<int>(row - m_rows.cbegin()));
}

void StepListModel::refresh()
{
    const auto &wait = m_steps->wait();
    refreshRows();
    setWaitText(wait ? waitText(*wait) : QString());
}

bool StepListModel::hasSameSteps() const
{
    return std::equal(m_rows.cbegin(), m_rows.cend(), m_steps->rows().cbegin(), m_steps->rows().cend(),
                      [](const auto &mine, const auto &theirs) { return mine.step == theirs.step; });
}

void StepListModel::refreshRows()
{
    if (!hasSameSteps()) {
        beginResetModel();
        m_rows = m_steps->rows();
        endResetModel();
        return;
    }
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row) == m_steps->rows().at(row))
            continue;
        m_rows[row] = m_steps->rows().at(row);
        const QModelIndex place = index(static_cast<int>(row));
        Q_EMIT dataChanged(place, place);
    }
}

void StepListModel::setWaitText(const QString &text)
{
    const int row = static_cast<int>(m_rows.size());
    if (m_waitText.isNull() && !text.isNull()) {
        beginInsertRows({}, row, row);
        m_waitText = text;
        endInsertRows();
    } else if (!m_waitText.isNull() && text.isNull()) {
        beginRemoveRows({}, row, row);
        m_waitText = text;
        endRemoveRows();
    } else if (m_waitText != text) {
        m_waitText = text;
        Q_EMIT dataChanged(index(row), index(row));
    }
}

} // namespace sealwright
