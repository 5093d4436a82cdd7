// The application killed at each step of the road, when nothing of its own can put things right any more.

#include "trouble/road.h"

#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

enum class Moment { beforeRun, inRun, afterRun, beforeChange };

using NamedMoment = std::pair<Moment, const char *>;

constexpr NamedMoment moments[] = {
    {Moment::beforeRun, "beforeARun"},
    {Moment::inRun, "whenAToolHasDoneItsWork"},
    {Moment::afterRun, "afterARun"},
    {Moment::beforeChange, "beforeAChangeOfTheDisk"},
};

constexpr RoadKind kinds[] = {
    {.name = "anApp", .item = u"Foo.app"},
    {.name = "aPackage", .item = u"Foo.pkg"},
    {.name = "aDiskImage", .item = u"Foo.dmg"},
    {.name = "aPlugin", .item = u"Foo.plugin"},
    {.name = "anFmplugin", .item = u"Foo.fmplugin"},
    {.name = "anAppAsDiskImage", .item = u"Foo.app", .asDiskImage = true},
};

/// What ends the process of the caller, once, where it has been called that often.
auto deathAt(int step)
{
    return [step, count = std::make_shared<std::atomic<int>>(0)] {
        if ((*count)++ == step)
            raise(SIGKILL);
    };
}

} // namespace

class KilledApplication : public testing::TestWithParam<std::tuple<RoadKind, NamedMoment>> {
protected:
    RoadKind kind() const { return std::get<0>(GetParam()); }
    Moment moment() const { return std::get<1>(GetParam()).first; }

    /// What the process that walks is at when it dies, step by step.
    QStringList steps() const
    {
        if (moment() == Moment::beforeChange)
            return Road::undisturbedChanges(kind());
        QStringList tools;
        for (const ToolCall &run : m_runs)
            tools.append(run.tool);
        return tools;
    }

    void layDeath(Road &road, int step)
    {
        const auto die = deathAt(step);
        const auto dieAtRun = [die](const QString &) { die(); };
        switch (moment()) {
        case Moment::beforeRun:
            road.host.launcher.beforeRun = dieAtRun;
            break;
        case Moment::inRun:
            road.host.tools.killCallerIn(m_runs.at(step).tool, runNumber(m_runs, step));
            break;
        case Moment::afterRun:
            road.host.launcher.afterRun = dieAtRun;
            break;
        case Moment::beforeChange:
            road.host.files.failure = [die](const QString &, const QString &) {
                die();
                return QString();
            };
        }
    }

    static void layNoDeath(Road &road)
    {
        road.host.launcher.beforeRun = nullptr;
        road.host.launcher.afterRun = nullptr;
        road.host.files.failure = nullptr;
    }

    /// Walks in a process of its own, which has the folders in common with this one and dies on its way. The
    /// threads of earlier roads have ended with them: none that is missing in the new process holds a lock.
    static void walkToDeath(Road &road)
    {
        const pid_t walker = fork();
        ASSERT_GE(walker, 0);
        if (walker == 0) {
            // What nobody is left to take away is taken away with the folder of the test.
            qputenv("TMPDIR", QFile::encodeName(road.host.item(u".."_s)));
            road.walk();
            std::_Exit(EXIT_SUCCESS);
        }
        int status = 0;
        ASSERT_EQ(waitpid(walker, &status, 0), walker);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "it got to its end";
    }

    /// The next submission takes the place of what is left, of which a result goes to the trash.
    static void expectNextWalkWorksOver(Road &road, const QString &leftFolder)
    {
        road.putItemBack();
        road.walk();
        road.expectEnd({u"Notarized", 0, u""});
        const bool isResult = leftFolder == "Submitted"_L1 || leftFolder == "Notarized"_L1;
        EXPECT_EQ(road.host.files.trashed,
                  isResult ? QStringList{road.host.item(u"Foo - "_s + leftFolder)} : QStringList());
    }

    const QList<ToolCall> m_runs = Road::undisturbedRuns(kind());
};

TEST_P(KilledApplication, atEachStepLosesNothingAndTheNextRunWorksOverWhatIsLeft)
{
    const QStringList steps = this->steps();
    ASSERT_GE(steps.size(), 4);
    for (int i = 0; i < steps.size() && !HasFailure(); ++i) {
        SCOPED_TRACE(steps.at(i).toStdString() + ", step " + std::to_string(i + 1));
        Road road(kind());
        layDeath(road, i);
        walkToDeath(road);
        layNoDeath(road);
        road.expectItemIsSafe();
        expectNextWalkWorksOver(road, road.folder());
    }
}

INSTANTIATE_TEST_SUITE_P(OnTheRoad, KilledApplication,
                         testing::Combine(testing::ValuesIn(kinds), testing::ValuesIn(moments)),
                         [](const auto &row) {
                             return std::string(std::get<0>(row.param).name) + '_'
                                 + std::get<1>(row.param).second;
                         });
