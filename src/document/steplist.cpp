#include "document/steplist.h"

#include "platform/clock.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qint64 millisecondsPerSecond = 1000;

auto has(StepState state)
{
    return [state](const StepList::Row &row) { return row.state == state; };
}

} // namespace

QString stateName(StepState state)
{
    switch (state) {
    case StepState::waiting:
        return u"waiting"_s;
    case StepState::running:
        return u"running"_s;
    case StepState::done:
        return u"done"_s;
    case StepState::failed:
        return u"failed"_s;
    case StepState::cancelled:
        return u"cancelled"_s;
    case StepState::skipped:
        return u"skipped"_s;
    }
    return {};
}

const StepList::Row *StepList::running() const
{
    const auto row = std::find_if(m_rows.cbegin(), m_rows.cend(), has(StepState::running));
    return row == m_rows.cend() ? nullptr : &*row;
}

qint64 StepList::duration(const Row &row) const
{
    if (!row.began.isValid())
        return 0;
    const QDateTime end = row.ended.isValid() ? row.ended : m_clock.now();
    return std::max<qint64>(0, row.began.msecsTo(end) / millisecondsPerSecond); // a clock may be set back
}

qint64 StepList::secondsToPoll() const
{
    if (!m_wait || !m_wait->nextPoll.isValid())
        return 0;
    return std::max<qint64>(0, m_clock.now().msecsTo(m_wait->nextPoll) / millisecondsPerSecond);
}

void StepList::plan(const QList<Step> &steps)
{
    m_rows.clear();
    for (const Step &step : steps)
        m_rows.append({.step = step});
    m_wait.reset();
    Q_EMIT changed();
}

void StepList::begin(const Step &step)
{
    endRunning(StepState::done);
    const qsizetype place = placeOf(step);
    skipWaiting(place);
    m_rows[place] = {.step = step, .state = StepState::running, .began = m_clock.now()};
    Q_EMIT changed();
}

void StepList::finish(StepState state)
{
    endRunning(state);
    skipWaiting(m_rows.size());
    Q_EMIT changed();
}

void StepList::advance(const Parts &parts)
{
    const auto row = std::find_if(m_rows.begin(), m_rows.end(), has(StepState::running));
    if (row == m_rows.end() || row->parts == parts)
        return;
    row->parts = parts;
    Q_EMIT changed();
}

void StepList::pollIn(double delay, quint64 failures)
{
    if (!running())
        return; // cancelled meanwhile
    const quint64 polls = m_wait ? m_wait->polls : 0;
    const auto milliseconds = static_cast<qint64>(delay * millisecondsPerSecond);
    m_wait = {.nextPoll = m_clock.now().addMSecs(milliseconds), .polls = polls, .failures = failures};
    Q_EMIT changed();
}

void StepList::pollNow()
{
    if (!m_wait)
        return;
    m_wait->nextPoll = {};
    ++m_wait->polls;
    Q_EMIT changed();
}

void StepList::endRunning(StepState state)
{
    m_wait.reset();
    for (Row &row : m_rows) {
        if (row.state != StepState::running)
            continue;
        row.state = state;
        row.ended = m_clock.now();
    }
}

void StepList::skipWaiting(qsizetype end)
{
    for (qsizetype row = 0; row < end; ++row) {
        if (m_rows[row].state == StepState::waiting)
            m_rows[row].state = StepState::skipped;
    }
}

qsizetype StepList::placeOf(const Step &step)
{
    const auto planned =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [&step](const Row &row) { return row.step == step; });
    if (planned != m_rows.cend())
        return planned - m_rows.cbegin();
    const auto next = std::find_if(m_rows.cbegin(), m_rows.cend(), has(StepState::waiting));
    const qsizetype place = next - m_rows.cbegin();
    m_rows.insert(place, {.step = step});
    return place;
}

} // namespace sealwright
