// Every tool of the road failing at each of its runs in turn, in every way that a tool can fail.

#include "trouble/road.h"

#include "document/mainwincontroller.h"

#include <gtest/gtest.h>

#include <csignal>
#include <span>

using namespace Qt::StringLiterals;

namespace {

enum class Trouble { status, signal, noOutput, garbage, muchOutput, hangsUntilCancelled };

using NamedTrouble = std::pair<Trouble, const char *>;

constexpr NamedTrouble troubles[] = {
    {Trouble::status, "returns_1"},
    {Trouble::signal, "dies_of_a_signal"},
    {Trouble::noOutput, "prints_nothing"},
    {Trouble::garbage, "prints_garbage"},
    {Trouble::hangsUntilCancelled, "hangs_until_cancelled"},
};

constexpr NamedTrouble muchOutput{Trouble::muchOutput, "prints_50_MB"};

constexpr RoadKind kinds[] = {
    {.name = "anApp", .item = u"Foo.app"},
    {.name = "aPackage", .item = u"Foo.pkg"},
    {.name = "aDiskImage", .item = u"Foo.dmg"},
    {.name = "aPlugin", .item = u"Foo.plugin"},
    {.name = "anAppAsDiskImage", .item = u"Foo.app", .asDiskImage = true},
    {.name = "anAppOnSharedRunners", .item = u"Foo.app", .onSharedRunners = true},
};

/// Those that run every tool between them.
constexpr auto kindsForMuchOutput = std::span(kinds).first<3>();

constexpr RoadEnd success{u"Notarized", 0, u""};

/// Lays the trouble into one run, which otherwise does on disk what the tool's usual run does.
ToolAnswer answerIn(Trouble trouble, const ToolAnswer &usual)
{
    switch (trouble) {
    case Trouble::status:
        return {.status = 1, .error = "something went wrong\n"};
    case Trouble::signal:
        return {.signal = SIGKILL};
    case Trouble::noOutput:
        return {.content = usual.content, .target = usual.target};
    case Trouble::garbage:
        return {.output = "\xff\xfe<?xml \x80 bplist00 Status\n: {",
                .content = usual.content,
                .target = usual.target};
    case Trouble::muchOutput:
        return {.output = QByteArray("all work and no play\n").repeated(2'500'000),
                .content = usual.content,
                .target = usual.target};
    case Trouble::hangsUntilCancelled:
        return {.hangs = true, .content = usual.content, .target = usual.target};
    }
    return {};
}

bool isFailure(Trouble trouble)
{
    return trouble == Trouble::status || trouble == Trouble::signal;
}

/// What a run that returns a failure does to the submission.
RoadEnd endOfFailure(const QString &tool, bool isCreatingImage)
{
    if (tool == "altool--notarization-history"_L1)
        return {u"", 1103, u"Cannot Continue"};
    if (tool == "xattr"_L1)
        return {u"Failed", 1108, u"Error Clearing Attributes"};
    if (tool == "codesign"_L1)
        return {u"Failed", 1110, u"Error Signing Code"};
    if (tool == "productsign"_L1)
        return {u"Failed", 7, u"Error Signing .pkg File"};
    if (tool == "ditto"_L1)
        return {u"Failed", 1113, u"Error Making Archive"};
    if (tool == "hdiutil"_L1 && isCreatingImage)
        return {u"Failed", 7, u"Error Making Disk Image"};
    if (tool == "altool--notarize-app"_L1)
        return {u"Failed", 7, u"Error Uploading File"};
    if (tool == "stapler"_L1)
        return {u"Failed", 1200, u"Stapling Failed"};
    return success; // what file and spctl say is a matter of fact, and a poll is tried again
}

/// What a run that succeeds and prints something else than usual does.
RoadEnd endOfStrangeOutput(const QString &tool, Trouble trouble)
{
    if (tool == "altool--notarize-app"_L1)
        return {u"Working", 1115, u"No RequestUUID Returned"};
    if (tool == "altool--notarization-info"_L1 && trouble != Trouble::noOutput)
        return {u"Failed", 1117, u"Notarization Failed"};
    return success; // of the others only the status counts
}

/// Where a cancelled run leaves the folder: the tool is ended, fails, and its report is dropped.
const char16_t *folderOfCancel(const QString &tool, const RoadKind &kind)
{
    if (tool == "altool--notarization-history"_L1)
        return u"";
    if (tool == "altool--notarize-app"_L1)
        return u"Failed";
    if (tool == "altool--notarization-info"_L1)
        return u"Submitted";
    if (kind.onSharedRunners) // the cancel reaches the upload's runner only
        return tool == "stapler"_L1 ? u"Notarized" : u"Working";
    if (tool == "file"_L1 || tool == "spctl"_L1)
        return u"Working"; // their failure is none, and the next test stops
    if (tool == "hdiutil"_L1 && !kind.asDiskImage)
        return u"Notarized"; // nothing is tested before the upload, which takes the cancel back
    return u"Failed";
}

ToolAnswer usualAnswer(const QString &tool, const RoadKind &kind, const Road &road)
{
    if (tool == "productsign"_L1 || tool == "ditto"_L1)
        return {.content = "made"};
    if (tool == "hdiutil"_L1 && kind.asDiskImage)
        return {.content = "image", .target = road.host.item(u"Foo - Working/Foo.dmg"_s)};
    return {};
}

} // namespace

class ToolTrouble : public testing::TestWithParam<std::tuple<RoadKind, NamedTrouble>> {
protected:
    RoadKind kind() const { return std::get<0>(GetParam()); }
    Trouble trouble() const { return std::get<1>(GetParam()).first; }

    RoadEnd expectedEnd(const QString &tool) const
    {
        if (trouble() == Trouble::hangsUntilCancelled)
            return {folderOfCancel(tool, kind()), 1118, u"Process Cancelled"};
        return isFailure(trouble()) ? endOfFailure(tool, kind().asDiskImage)
                                    : endOfStrangeOutput(tool, trouble());
    }

    void walkWithTrouble(Road &road, const QString &tool, int run)
    {
        if (trouble() != Trouble::hangsUntilCancelled)
            return road.walk();
        road.begin();
        road.host.runUntil([&] { // a poll's run comes only when its timer fires
            if (road.host.timers.armed().size() == 1)
                road.host.timers.fireNext();
            // Until the launch has returned, the signal of a cancel might come after the release.
            // And what the run has queued before the tool decides to which runner a cancel goes.
            return road.host.tools.callsOf(tool).size() == run && !road.host.launcher.isLaunching()
                && road.host.mainQueue.isEmpty();
        });
        road.host.document().doCancel();
        road.host.tools.release(tool, run);
        road.goOnToTheEnd();
    }
};

TEST_P(ToolTrouble, atEachRunEndsAsDefinedAndLosesNothing)
{
    const QList<ToolCall> runs = Road::undisturbedRuns(kind());
    ASSERT_GE(runs.size(), 6);
    for (int i = 0; i < runs.size() && !HasFailure(); ++i) {
        const QString tool = runs.at(i).tool;
        const int run = runNumber(runs, i);
        SCOPED_TRACE(tool.toStdString() + " in its run " + std::to_string(run));
        Road road(kind());
        road.host.tools.answerRun(tool, run, answerIn(trouble(), usualAnswer(tool, kind(), road)));
        walkWithTrouble(road, tool, run);
        road.expectEnd(expectedEnd(tool));
        if (isFailure(trouble()) && road.reply && road.reply->isError())
            road.expectSecondWalkSucceeds();
    }
}

std::string nameOfCase(const testing::TestParamInfo<std::tuple<RoadKind, NamedTrouble>> &row)
{
    const auto &[kind, trouble] = row.param;
    return std::string(kind.name) + '_' + trouble.second;
}

INSTANTIATE_TEST_SUITE_P(OfATool, ToolTrouble,
                         testing::Combine(testing::ValuesIn(kinds), testing::ValuesIn(troubles)), nameOfCase);
INSTANTIATE_TEST_SUITE_P(OfAChattyTool, ToolTrouble,
                         testing::Combine(testing::ValuesIn(kindsForMuchOutput), testing::Values(muchOutput)),
                         nameOfCase);
