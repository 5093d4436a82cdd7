#include "platform/qt/qturlreader.h"
#include "loopbackserver.h"
#include "temporaryfolder.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

/// Read where a workflow reads: on a thread that is not the main one.
std::optional<QByteArray> contentsOf(const QUrl &url)
{
    std::optional<QByteArray> contents;
    std::thread([&] { contents = QtUrlReader().contentsOf(url); }).join();
    return contents;
}

QByteArray ok(const QByteArray &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

// "all of it", compressed by gzip
const QByteArray compressed = QByteArray("\x1f"
                                         "\x8b"
                                         "\x08"
                                         "\x00"
                                         "\x00"
                                         "\x00"
                                         "\x00"
                                         "\x00"
                                         "\x02"
                                         "\x03"
                                         "\x4b"
                                         "\xcc"
                                         "\xc9"
                                         "\x51"
                                         "\xc8"
                                         "\x4f"
                                         "\x53"
                                         "\xc8"
                                         "\x2c"
                                         "\x01"
                                         "\x00"
                                         "\x72"
                                         "\x7c"
                                         "\xda"
                                         "\xbf"
                                         "\x09"
                                         "\x00"
                                         "\x00"
                                         "\x00",
                                         29);

} // namespace

TEST(QtUrlReader, aBodyIsReadWhole)
{
    const QByteArray large = QByteArray("0123456789\n").repeated(200000);
    LoopbackServer server(
        {{"/log", ok("{\"status\": \"Accepted\"}")}, {"/large", ok(large)}, {"/empty", ok("")}});
    EXPECT_EQ(contentsOf(server.url(u"/log"_s)), QByteArray("{\"status\": \"Accepted\"}"));
    EXPECT_EQ(contentsOf(server.url(u"/large"_s)), large);
    EXPECT_EQ(contentsOf(server.url(u"/empty"_s)), QByteArray(""));
    EXPECT_TRUE(server.requests().startsWith("GET /log HTTP/1.1\r\n"));
}

TEST(QtUrlReader, aBodyWithoutALengthEndsWithTheConnection)
{
    LoopbackServer server({{"/", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nall of it"}});
    EXPECT_EQ(contentsOf(server.url(u"/"_s)), QByteArray("all of it"));
}

TEST(QtUrlReader, aChunkedBodyIsPutTogether)
{
    LoopbackServer server(
        {{"/", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nall \r\n5\r\nof it\r\n0\r\n\r\n"}});
    EXPECT_EQ(contentsOf(server.url(u"/"_s)), QByteArray("all of it"));
}

TEST(QtUrlReader, anErrorStatusIsNothingWhateverItsBody)
{
    LoopbackServer server({{"/missing", "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\ngone"},
                           {"/broken", "HTTP/1.1 500 Internal Server Error\r\nContent-Length: 2\r\n\r\n{}"},
                           {"/denied", "HTTP/1.1 403 Forbidden\r\nContent-Length: 2\r\n\r\n{}"}});
    EXPECT_EQ(contentsOf(server.url(u"/missing"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(server.url(u"/broken"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(server.url(u"/denied"_s)), std::nullopt);
}

TEST(QtUrlReader, aRedirectionIsFollowedAndALoopIsNothing)
{
    LoopbackServer server({{"/from", "HTTP/1.1 302 Found\r\nLocation: /to\r\nContent-Length: 0\r\n\r\n"},
                           {"/to", ok("here")},
                           {"/loop", "HTTP/1.1 301 Moved\r\nLocation: /loop\r\nContent-Length: 0\r\n\r\n"}});
    EXPECT_EQ(contentsOf(server.url(u"/from"_s)), QByteArray("here"));
    EXPECT_EQ(contentsOf(server.url(u"/loop"_s)), std::nullopt);
}

TEST(QtUrlReader, aBodyThatIsShorterThanToldIsNothing)
{
    LoopbackServer server({{"/", "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nonly the beginning"},
                           {"/none", "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n"}});
    EXPECT_EQ(contentsOf(server.url(u"/"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(server.url(u"/none"_s)), std::nullopt);
}

TEST(QtUrlReader, anAnswerThatIsNotHttpOrNoneAtAllIsNothing)
{
    LoopbackServer server({{"/garbage", "\x01\x02 this is no answer\r\n\r\n"}, {"/silent", ""}});
    EXPECT_EQ(contentsOf(server.url(u"/garbage"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(server.url(u"/silent"_s)), std::nullopt);
}

TEST(QtUrlReader, aCompressionThatNobodyAskedForIsUndone)
{
    LoopbackServer server({{"/",
                            "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: "
                                + QByteArray::number(compressed.size()) + "\r\n\r\n" + compressed}});
    EXPECT_EQ(contentsOf(server.url(u"/"_s)), QByteArray("all of it"));
}

TEST(QtUrlReader, aServerThatFallsSilentIsNothingAfterAWhile)
{
    LoopbackServer server({{"/", ok("{}")}});
    server.hold();
    std::optional<QByteArray> contents = QByteArray();
    std::thread([&] {
        contents = QtUrlReader({.silence = std::chrono::milliseconds(100)}).contentsOf(server.url(u"/"_s));
    }).join();
    EXPECT_EQ(contents, std::nullopt);
    std::thread([&] {
        contents = QtUrlReader({.answer = std::chrono::milliseconds(100)}).contentsOf(server.url(u"/"_s));
    }).join();
    EXPECT_EQ(contents, std::nullopt);
}

TEST(QtUrlReader, aFileThatNeverEndsIsNothing)
{
    EXPECT_EQ(contentsOf(QUrl::fromLocalFile(u"/dev/zero"_s)), std::nullopt);
}

TEST(QtUrlReader, aServerThatIsNotThereIsNothing)
{
    QUrl gone;
    {
        LoopbackServer server({});
        gone = server.url(u"/"_s);
    }
    EXPECT_EQ(contentsOf(gone), std::nullopt);
}

TEST(QtUrlReader, aFileIsRead)
{
    const TemporaryFolder folder;
    const QString file = folder.file(u"a log #1?.json"_s, "{}\n");
    EXPECT_EQ(contentsOf(QUrl::fromLocalFile(file)), QByteArray("{}\n"));
    EXPECT_EQ(contentsOf(QUrl::fromLocalFile(folder.path(u"missing"_s))), std::nullopt);
    EXPECT_EQ(contentsOf(QUrl::fromLocalFile(folder.path())), std::nullopt);
}

TEST(QtUrlReader, anyOtherKindOfUrlIsNothing)
{
    EXPECT_EQ(contentsOf(QUrl(u"data:text/plain,hello"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(QUrl(u"/etc/passwd"_s)), std::nullopt);
    EXPECT_EQ(contentsOf(QUrl()), std::nullopt);
}
