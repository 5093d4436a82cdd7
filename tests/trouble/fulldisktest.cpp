// A disk that is full at each change that the program makes to it in turn.

#include "trouble/road.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;

namespace {

constexpr RoadKind kinds[] = {
    {.name = "anApp", .item = u"Foo.app"},
    {.name = "anAppAsDiskImage", .item = u"Foo.app", .asDiskImage = true},
    {.name = "aPackage", .item = u"Foo.pkg"},
    {.name = "aDiskImage", .item = u"Foo.dmg"},
};

} // namespace

class FullDisk : public testing::TestWithParam<RoadKind> { };

TEST_P(FullDisk, atEachChangeLosesNothingAndIsReportedWhereItMatters)
{
    const QStringList changes = Road::undisturbedChanges(GetParam());
    ASSERT_GE(changes.size(), 4);
    for (int i = 0; i < changes.size() && !HasFailure(); ++i) {
        SCOPED_TRACE(changes.at(i).toStdString() + ", change " + std::to_string(i + 1));
        Road road(GetParam());
        std::atomic<int> change = 0;
        road.host.files.failure = [&change, i](const QString &, const QString &) {
            return change++ >= i ? u"No space left on device"_s : QString();
        };
        road.walk();
        road.host.files.failure = nullptr;
        ASSERT_TRUE(road.reply);
        EXPECT_GE(change, i + 1);
        road.expectItemIsSafe();
        road.expectIdleDocument();
        if (road.reply->isError())
            road.expectSecondWalkSucceeds();
        ++Road::casesHeld;
    }
}

INSTANTIATE_TEST_SUITE_P(OfARoad, FullDisk, testing::ValuesIn(kinds),
                         [](const auto &row) { return std::string(row.param.name); });
