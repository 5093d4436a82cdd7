// A cancel in every gap between two runs: before a tool is there to be ended, and after it has ended.

#include "trouble/road.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

enum class Gap { before, after };

constexpr RoadKind kinds[] = {
    {.name = "anApp", .item = u"Foo.app"},
    {.name = "aPackage", .item = u"Foo.pkg"},
    {.name = "anAppOnSharedRunners", .item = u"Foo.app", .onSharedRunners = true},
};

/// The tool at the gap works as ever; it is the next test that stops the submission, if one follows.
const char16_t *folderOfCancel(const QList<ToolCall> &runs, int index)
{
    const QString tool = runs.at(index).tool;
    if (tool == "altool--notarization-history"_L1)
        return u"";
    if (tool == "altool--notarization-info"_L1 && runNumber(runs, index) == 1)
        return u"Submitted";
    if (tool == "altool--notarize-app"_L1 || tool == "altool--notarization-info"_L1 || tool == "stapler"_L1)
        return u"Notarized"; // an upload that is accepted takes the cancel back, and a verdict is not stopped
    return u"Working";
}

} // namespace

class CancelGap : public testing::TestWithParam<std::tuple<RoadKind, Gap>> { };

TEST_P(CancelGap, endsAtTheNextTestAndLosesNothing)
{
    const auto &[kind, gap] = GetParam();
    const QList<ToolCall> runs = Road::undisturbedRuns(kind);
    for (int i = 0; i < runs.size() && !HasFailure(); ++i) {
        SCOPED_TRACE(runs.at(i).tool.toStdString() + " in its run " + std::to_string(runNumber(runs, i)));
        Road road(kind);
        std::atomic<int> run = 0;
        const auto hook = [&road, &run, i](const QString &) {
            if (run++ == i)
                road.cancelFromWorker();
        };
        (gap == Gap::before ? road.host.launcher.beforeRun : road.host.launcher.afterRun) = hook;
        road.walk();
        road.expectEnd({folderOfCancel(runs, i), 1118, u"Process Cancelled"});
    }
}

INSTANTIATE_TEST_SUITE_P(BetweenRuns, CancelGap,
                         testing::Combine(testing::ValuesIn(kinds), testing::Values(Gap::before, Gap::after)),
                         [](const auto &row) {
                             return std::string(std::get<0>(row.param).name)
                                 + (std::get<1>(row.param) == Gap::before ? "_beforeARun" : "_afterARun");
                         });
