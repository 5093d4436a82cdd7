// The application killed, or stopped for a while, at random moments between the upload and the end, again and
// again: each wait is found by the next one, or goes on, and ends well, once. The seed is printed;
// SEALWRIGHT_SEED repeats a walk, and SEALWRIGHT_KILLS makes it longer.

#include "trouble/road.h"

#include "run/waits.h"
#include "scripting/NSApplication+Scripting.h"
#include "support/items.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualSeed = 20261122;
constexpr int usualKills = 12;
constexpr int mostKillsOfOneWait = 4;
constexpr int mostOperations = 24; // of a run between the record and its end, about
constexpr int longestLife =
    120'000; // microseconds; some runs have ended by then, and then the next kill comes

constexpr RoadKind kinds[] = {
    {.name = "anApp", .item = u"Foo.app"},
    {.name = "aPackage", .item = u"Foo.pkg"},
    {.name = "aDiskImage", .item = u"Foo.dmg"},
    {.name = "anAppAsDiskImage", .item = u"My Foo.app", .asDiskImage = true},
};

int numberFrom(const char *variable, int otherwise)
{
    bool isSet = false;
    const int number = qEnvironmentVariableIntValue(variable, &isSet);
    return isSet ? number : otherwise;
}

} // namespace

class KilledWait : public testing::Test {
protected:
    KilledWait()
        : m_seed(numberFrom("SEALWRIGHT_SEED", usualSeed))
        , m_random(static_cast<unsigned>(m_seed))
    {
    }

    /// From 0 up to what is below the number.
    int below(int number) { return std::uniform_int_distribution(0, number - 1)(m_random); }

    /// One submission, from its upload to its end, over several processes.
    void submitWithKills(const RoadKind &kind, int kills)
    {
        Road road(kind);
        road.host.stateFolder = road.host.item(u"../state"_s);
        if (!liveAndDie(road, [&road] { road.walk(); }))
            return expectEnded(road);
        for (int life = 1; life < kills && isWaiting(road); ++life)
            liveAndDie(road, [&road] { goOn(road); });
        expectFoundAndEnded(road);
    }

    /// What the process of a run does until it is killed, in a process of its own. False if it got to its end
    /// first.
    bool liveAndDie(Road &road, const std::function<void()> &life)
    {
        const bool diesByTime = below(2) == 0;
        const int moment = diesByTime ? below(longestLife) : below(mostOperations);
        const pid_t process = fork();
        if (process == 0) {
            qputenv("TMPDIR", QFile::encodeName(road.host.item(u".."_s)));
            if (!diesByTime)
                dieAtOperation(road, moment);
            life();
            std::_Exit(EXIT_SUCCESS);
        }
        if (diesByTime)
            killAfterRecord(road, process, moment);
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        const bool isKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        m_kills += isKilled ? 1 : 0;
        return isKilled;
    }

    static QString recordsFolder(const Road &road) { return road.host.stateFolder + u"/waiting"_s; }
    static bool hasRecord(const Road &road)
    {
        return !QDir(recordsFolder(road)).entryList({u"*.json"_s}, QDir::Files).isEmpty();
    }
    static QStringList waiting(Road &road) { return road.host.application().scripting().waiting(); }
    static bool isWaiting(Road &road) { return !waiting(road).isEmpty(); }

    /// Before the n-th change of the disk or gap around a tool once there is a record, and before no earlier
    /// one: an upload that nobody knows to be accepted is another matter.
    static void dieAtOperation(Road &road, int number) { raiseAtOperation(road, number, SIGKILL); }
    static void raiseAtOperation(Road &road, int number, int signal)
    {
        const auto raiseInTurn = [&road, number, signal, count = std::make_shared<std::atomic<int>>(0)] {
            if (hasRecord(road) && (*count)++ == number)
                raise(signal);
        };
        road.host.launcher.beforeRun = [raiseInTurn](const QString &) { raiseInTurn(); };
        road.host.launcher.afterRun = road.host.launcher.beforeRun;
        road.host.files.failure = [raiseInTurn](const QString &, const QString &) {
            raiseInTurn();
            return QString();
        };
    }
    static bool isRunning(pid_t process)
    {
        siginfo_t ended{};
        return waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT) == 0
            && ended.si_pid == 0;
    }
    static void killAfterRecord(const Road &road, pid_t process, int microseconds)
    {
        while (!hasRecord(road) && isRunning(process))
            usleep(500);
        usleep(static_cast<useconds_t>(microseconds));
        kill(process, SIGKILL);
    }

    /// A tool that was just being started when its application was killed holds the folder until it runs.
    static void waitUntilFree(Road &road)
    {
        road.host.runUntil([&road] {
            const auto waiting = waits::all(road.host.host());
            return std::none_of(waiting.cbegin(), waiting.cend(), [&road](const WaitRecord &wait) {
                return waits::isAttended(road.host.host(), wait);
            });
        });
    }

    static void goOn(Road &road)
    {
        waitUntilFree(road);
        road.host.application().goOnWaiting();
        road.goOnToTheEnd();
    }

    /// One submission whose process stands still for a while at an operation behind its upload, as when a
    /// machine sleeps.
    void submitWithSleep(const RoadKind &kind, int operation)
    {
        Road road(kind);
        road.host.stateFolder = road.host.item(u"../state"_s);
        const pid_t process = fork();
        if (process == 0) {
            qputenv("TMPDIR", QFile::encodeName(road.host.item(u".."_s)));
            raiseAtOperation(road, operation, SIGSTOP);
            road.walk();
            std::_Exit(EXIT_SUCCESS);
        }
        siginfo_t stopped{};
        EXPECT_EQ(waitid(P_PID, static_cast<id_t>(process), &stopped, WEXITED | WSTOPPED | WNOWAIT), 0);
        EXPECT_EQ(stopped.si_code, CLD_STOPPED);
        expectLeftAlone(road);
        kill(process, SIGCONT);
        int status = 0;
        EXPECT_EQ(waitpid(process, &status, 0), process);
        expectEnded(road);
    }
    /// Another application sees that somebody attends to the wait, and does not take it over.
    static void expectLeftAlone(Road &road)
    {
        EXPECT_TRUE(road.host.application().unattendedWaits().isEmpty());
        road.host.application().goOnWaiting();
        road.host.settle();
        EXPECT_TRUE(road.host.timers.armed().isEmpty());
    }

    /// By this process, which lives on.
    void expectFoundAndEnded(Road &road)
    {
        const QStringList found = waiting(road);
        if (road.folder() != u"Notarized"_s) {
            EXPECT_EQ(found.size(), 1) << "lost: the folder is called " << road.folder().toStdString();
        }
        goOn(road);
        expectEnded(road);
    }
    void expectEnded(Road &road)
    {
        EXPECT_EQ(road.folder(), u"Notarized"_s);
        road.expectItemIsSafe();
        EXPECT_FALSE(QFile::exists(road.itemPath())) << "it is put away in the folder";
        EXPECT_FALSE(isWaiting(road));
        EXPECT_FALSE(hasRecord(road));
        EXPECT_EQ(road.host.tools.callsOf(u"altool--notarize-app"_s).size(), 1);
        EXPECT_FALSE(QFile::exists(road.host.item(u"../trash"_s))) << "nothing was in the way";
        ++Road::casesHeld;
    }

    const int m_seed;
    std::mt19937 m_random;
    int m_kills = 0;
};

TEST_F(KilledWait, isFoundByTheNextApplicationAndEndsOnce)
{
    const int wanted = numberFrom("SEALWRIGHT_KILLS", usualKills);
    int submissions = 0;
    for (; m_kills < wanted && submissions < 10 * wanted && !HasFailure(); ++submissions) {
        SCOPED_TRACE("submission " + std::to_string(submissions) + ", seed " + std::to_string(m_seed));
        submitWithKills(kinds[static_cast<size_t>(submissions) % std::size(kinds)],
                        1 + below(mostKillsOfOneWait));
    }
    std::cout << m_kills << " kills of " << submissions << " submissions, seed " << m_seed << '\n';
}

TEST_F(KilledWait, goesOnWhereItWasAfterItsProcessHasStoodStill)
{
    constexpr int operations = 4; // of those that each kind has before its end
    for (int operation = 0; operation < operations && !HasFailure(); ++operation) {
        SCOPED_TRACE("operation " + std::to_string(operation));
        submitWithSleep(kinds[static_cast<size_t>(operation) % std::size(kinds)], operation);
    }
}
