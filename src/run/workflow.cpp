#include "run/workflow.h"

#include "platform/invariant.h"
#include "platform/timer.h"
#include "platform/workerqueue.h"
#include "run/logging.h"
#include "run/workingfoldernames.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr double timerTolerance = 10.0; ///< seconds

template <class... Functions>
struct Cases : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Cases(Functions...) -> Cases<Functions...>; // for compilers that do not find it by themselves

} // namespace

QList<Step> planOf(const Workflow &workflow)
{
    QList<Step> plan;
    std::copy_if(workflow.cbegin(), workflow.cend(), std::back_inserter(plan),
                 [](const Step &step) { return !step.name.isEmpty() && step.inPlan == InPlan::shown; });
    return plan;
}

void Driver::start()
{
    m_run->host.workers.post([self = shared_from_this()] { self->proceed(); });
}

Driver::State Driver::proceed()
{
    const bool isOver = m_state == State::stopped || m_state == State::failed || m_state == State::ended;
    if (!platform::holds(!isOver, "a run that is over is not taken on"))
        return m_state;
    m_state = State::atWork;
    while (m_next < m_workflow.size()) {
        if (!perform(m_workflow[m_next]))
            return m_state;
    }
    m_run->wait.end();
    m_run->progress.ended(*m_run);
    m_state = State::ended;
    return m_state;
}

bool Driver::perform(const Step &row)
{
    if (row.isWanted && !row.isWanted(*m_run))
        return goOn(row);
    const Step &step = row.chosen ? row.chosen(m_run->live) : row;
    if (m_isWaiting)
        return runStep(step);
    if (!step.wait && step.cancelOffer != CancelOffer::unchanged)
        m_run->progress.offersCancel(step.cancelOffer);
    if (!step.name.isEmpty()) {
        qCDebug(runLogging) << "begins:" << step.name;
        m_run->progress.began(step);
    }
    return step.wait ? beginWait(step) : runStep(step);
}

bool Driver::runStep(const Step &step)
{
    return std::visit(Cases{
                          [&](const Done &) { return goOn(step); },
                          [&](const Failure &failure) { return fail(failure); },
                          [&](const Again &again) { return waitAgain(step, again.seconds); },
                          [&](const EndsHere &) {
                              m_run->wait.end();
                              m_run->progress.endedWithUpload();
                              return end(State::ended);
                          },
                      },
                      step.work(*m_run));
}

bool Driver::goOn(const Step &step)
{
    m_isWaiting = false;
    ++m_next;
    if (step.cancelTest == CancelTest::isLeftOut || !m_run->live.cancelPressed())
        return true;
    m_run->progress.stopped();
    return end(State::stopped);
}

bool Driver::fail(const Failure &failure)
{
    qCDebug(runLogging).noquote() << "fails:" << failure.title << failure.logLine;
    m_run->progress.failed(failure);
    if (failure.folder == FolderFate::isNamedFailed)
        m_run->nameFolder(workingfolder::failed);
    if (failure.wait == WaitFate::isOver)
        m_run->wait.end();
    m_run->progress.leftBehind();
    return end(State::failed);
}

bool Driver::end(State state)
{
    m_state = state;
    return false;
}

// Waiting

bool Driver::beginWait(const Step &step)
{
    m_isWaiting = true;
    arm(step.wait->begin(*m_run));
    m_run->progress.changedStatus(status::waiting);
    // The timer is armed in any case: a cancel that came before the upload was accepted is forgotten then.
    if (m_run->live.cancelPressed())
        m_run->progress.stopped();
    else
        m_run->progress.offersCancel(step.cancelOffer);
    return end(State::waits);
}

bool Driver::waitAgain(const Step &step, double seconds)
{
    if (m_run->live.cancelPressed()) {
        m_run->log.logBoldString(u"Process cancelled..."_s);
        return fail(step.wait->whenCancelled());
    }
    m_run->log.logBoldString(step.wait->line.toString());
    arm(seconds);
    return end(State::waits);
}

void Driver::arm(double seconds)
{
    const auto timer = m_run->host.timers.schedule(seconds, timerTolerance, [self = shared_from_this()] {
        self->m_run->progress.polls();
        self->start();
    });
    m_run->progress.waits(timer, seconds);
}

} // namespace sealwright
