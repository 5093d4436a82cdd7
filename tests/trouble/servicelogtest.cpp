// The log that the service keeps of a request, read from a server that may do anything but serve it well.

#include "trouble/road.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/loopbackserver.h"
#include "platform/qt/qturlreader.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString infoTool = u"altool--notarization-info"_s;
const QString address = u"/log.json"_s;

QByteArray answered(const char *status, const QByteArray &body)
{
    return QByteArray("HTTP/1.1 ") + status + "\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\n\r\n" + body;
}

QByteArray ok(const QByteArray &body)
{
    return answered("200 OK", body);
}

const QByteArray issues = R"({"issues": [{"message": "unsigned"}]})";
const QString summary = u"\nmessage: unsigned\n----------"_s;

/// Larger than what any buffer on the way holds.
QByteArray largeLog()
{
    return R"({"tickets": ")" + QByteArray(20 * 1024 * 1024, 'x')
        + R"(", "issues": [{"message": "unsigned"}]})";
}

struct LogRow {
    const char *situation;
    QByteArray answer; ///< of the server, to its last byte
    QString contents = {}; ///< as text; null if there is no log
    QString summary = {}; ///< of the issues; null if there are none
    bool isText = true; ///< the contents can be decoded
    bool isServed = true; ///< somebody takes the connection
};

void PrintTo(const LogRow &row, std::ostream *stream)
{
    *stream << row.situation;
}

const LogRow rows[] = {
    {"isWhole", ok(issues), QString::fromLatin1(issues), summary},
    {"isLarge", ok(largeLog()), QString::fromLatin1(largeLog()), summary},
    {"isEmpty", ok(""), u""_s},
    {"isNoJson", ok("<html>Sign in</html>"), u"<html>Sign in</html>"_s},
    {"isCutOffJson", ok(R"({"issues": [{"mess)"), uR"({"issues": [{"mess)"_s},
    {"isAListOfValues", ok(R"(["issues"])"), uR"(["issues"])"_s},
    {.situation = "isNotUtf8",
     .answer = ok("{\"issues\": [{\"message\": \"caf\xe9\"}]}"),
     .contents = u"(null)"_s,
     .isText = false},
    {"breaksOff", "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + issues},
    {"isNotThere", answered("404 Not Found", issues)},
    {"isForbidden", answered("403 Forbidden", issues)},
    {"isOfABrokenServer", answered("500 Internal Server Error", issues)},
    {"leadsInACircle", "HTTP/1.1 302 Found\r\nLocation: /log.json\r\nContent-Length: 0\r\n\r\n"},
    {"isNoHttp", "\x01\x02 220 ready\r\n\r\n"},
    {"isNeverAnswered", ""},
    {.situation = "isOfAServerThatIsGone", .answer = {}, .isServed = false},
};

constexpr RoadKind anApp{.name = "anApp", .item = u"Foo.app"};

class ServiceLog : public testing::Test {
protected:
    void serve(const QByteArray &answer, bool isServed = true)
    {
        server.emplace(QHash<QByteArray, QByteArray>{{address.toUtf8(), answer}});
        url = server->url(address).toString();
        if (!isServed)
            server.reset();
        road.host.urls.otherwise = &reader;
    }

    void layVerdict(const QString &word)
    {
        report = FakeTools::infoReport(word, url);
        road.host.tools.answer(infoTool, {.output = report});
    }

    /// What the log file has behind the words.
    QString fileBehind(const QString &folder, const QString &words)
    {
        const QString text = road.host.text(folder + u"/Submission Log.txt"_s);
        const qsizetype start = text.indexOf(words);
        return start < 0 ? QString() : text.mid(start + words.size());
    }

    platform::QtUrlReader reader;
    std::optional<LoopbackServer> server;
    Road road{anApp};
    QString url;
    QByteArray report;
};

class BadServiceLog : public ServiceLog, public testing::WithParamInterface<LogRow> {
protected:
    const LogRow &row() const { return GetParam(); }
};

} // namespace

TEST_P(BadServiceLog, ofAnAcceptedRequestDoesNotStopStapling)
{
    serve(row().answer, row().isServed);
    layVerdict(u"success"_s);
    road.walk();
    road.expectEnd({u"Notarized", 0, u""});
    const QString inFile = fileBehind(u"Foo - Notarized"_s, u"LogFileURL full contents: "_s);
    const QString &contents = row().contents;
    EXPECT_TRUE(contents.isNull() ? inFile.isNull() : inFile.startsWith(contents + u'\n'))
        << inFile.left(200).toStdString();
    EXPECT_EQ(road.host.log(LogStyle::error),
              row().summary.isNull() ? QStringList() : QStringList{row().summary});
}

TEST_P(BadServiceLog, ofARefusedRequestStandsBehindTheReportIfThereIsOne)
{
    serve(row().answer, row().isServed);
    layVerdict(u"invalid"_s);
    road.walk();
    road.expectEnd({u"Failed", 1117, u"Notarization Failed"});
    const QString told = QString::fromUtf8(report);
    EXPECT_EQ(road.host.log(LogStyle::error),
              QStringList{row().contents.isNull() ? told : told + u'\n' + row().contents});
}

TEST_P(BadServiceLog, ofARequestThatIsLookedUpIsShownIfItIsText)
{
    serve(row().answer, row().isServed);
    layVerdict(u"success"_s);
    road.host.tools.answerRun(infoTool, 1, {.output = report}); // there is no poll that comes first
    road.host.application().newDocument(0);
    road.host.document().commands().requestInfo.infoForRequestUUID(u"1234"_s);
    road.host.settle();
    const bool isShown = row().isText && !row().contents.isNull();
    EXPECT_EQ(road.host.log(LogStyle::bold).contains(u"Contents of LogFileURL:"_s), isShown);
    QStringList shown{QString::fromUtf8(report)};
    if (isShown)
        shown.append(row().contents);
    EXPECT_TRUE(road.host.log(LogStyle::plain) == shown)
        << road.host.log(LogStyle::plain).join(u" / "_s).left(1000).toStdString();
    EXPECT_EQ(road.host.document().statusString(), u"ready"_s);
    EXPECT_FALSE(road.host.document().isBusy());
    ++Road::casesHeld;
}

INSTANTIATE_TEST_SUITE_P(ThatIsReadFromAServer, BadServiceLog, testing::ValuesIn(rows),
                         [](const auto &row) { return std::string(row.param.situation); });

class SlowServiceLog : public ServiceLog {
protected:
    /// Up to the moment when all but the end of the log has come.
    void waitForTheLog()
    {
        serve(ok(issues));
        server->hold();
        layVerdict(u"success"_s);
        road.begin();
        road.host.settle();
        while (server->requests().isEmpty()) {
            road.host.timers.fireNext();
            road.host.runUntil([this] {
                return !server->requests().isEmpty()
                    || (road.host.workers().isIdle() && road.host.mainQueue.isEmpty());
            });
        }
    }

    void letTheLogEnd()
    {
        server->release();
        road.goOnToTheEnd();
    }
};

TEST_F(SlowServiceLog, isWaitedForWhileTheApplicationGoesOn)
{
    waitForTheLog();
    road.host.runUntil([this] { return !road.host.document().isPolling(); });
    EXPECT_EQ(road.host.document().statusString(), u"waiting"_s);
    EXPECT_TRUE(road.host.tools.callsOf(u"stapler"_s).isEmpty());
    road.host.application().newDocument(0);
    EXPECT_EQ(road.host.document().statusString(), u"ready"_s) << "another document is not held up";
    road.host.document().window().performClose();
    letTheLogEnd();
    road.expectEnd({u"Notarized", 0, u""});
    EXPECT_EQ(road.host.log(LogStyle::error), QStringList{summary});
}

TEST_F(SlowServiceLog, isNotCutShortByACancelWhichStopsNothingAnyMore)
{
    waitForTheLog();
    road.host.runUntil([this] { return road.host.mainQueue.isEmpty(); });
    road.host.document().doCancel();
    letTheLogEnd();
    road.expectEnd({u"Notarized", 1118, u"Process Cancelled"});
}
