// What services may say that are none of ours.

#include "formats/notary/httpclient.h"
#include "formats/notary/replyreader.h"
#include "formats/notary/retries.h"
#include "toolchain/loopbacksocket.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace toolchain::notary;

namespace {

/// A server on loopback that gives one answer after the other, each to one connection, and keeps what it was
/// asked.
class Answers {
public:
    explicit Answers(QByteArrayList answers)
        : m_thread([this, answers = std::move(answers)] { serve(answers); })
    {
    }
    ~Answers()
    {
        m_socket.stopListening();
        m_thread.join();
    }
    Answers(const Answers &) = delete;
    Answers &operator=(const Answers &) = delete;

    [[nodiscard]] QByteArray origin() const
    {
        return "http://127.0.0.1:" + QByteArray::number(m_socket.port());
    }

    /// To be asked when all answers have been had.
    [[nodiscard]] const QByteArrayList &asked() const { return m_asked; }

private:
    void serve(const QByteArrayList &answers)
    {
        for (const QByteArray &answer : answers) {
            const int connection = m_socket.accepted();
            if (connection < 0)
                return;
            QByteArray request;
            char byte = 0;
            while (!request.endsWith("\r\n\r\n") && read(connection, &byte, 1) == 1)
                request += byte;
            m_asked.append(request);
            static_cast<void>(send(connection, answer.constData(), std::size_t(answer.size()), MSG_NOSIGNAL));
            close(connection);
        }
    }

    const LoopbackSocket m_socket;
    QByteArrayList m_asked;
    std::thread m_thread;
};

QByteArray redirectTo(const QByteArray &place)
{
    return "HTTP/1.1 302 Found\r\nLocation: " + place + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

const QByteArray good = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngood";

HttpReply fetch(const QByteArray &url)
{
    HttpClient client(ServiceConfig{});
    HttpRequest request;
    request.url = url;
    request.headers = {{"Authorization", "Bearer secret"}};
    request.redirects = RedirectPolicy::onceToHttps;
    return client.perform(request);
}

QByteArray placeWith(const QString &field, const QString &value)
{
    QJsonObject attributes{{u"awsAccessKeyId"_s, u"ASIA0123456789"_s},
                           {u"awsSecretAccessKey"_s, u"secret"_s},
                           {u"awsSessionToken"_s, u"session"_s},
                           {u"bucket"_s, u"bucket"_s},
                           {u"object"_s, u"prod/AROA:1"_s}};
    attributes.insert(field, value);
    const QJsonObject data{{u"id"_s, u"2efe2717-52ef-43a5-96dc-0797e4ca1041"_s},
                           {u"attributes"_s, attributes}};
    return QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson();
}

} // namespace

TEST(ForeignReplies, credentialsThatWouldBeMoreThanAHeaderAreNone)
{
    EXPECT_TRUE(readPlace(placeWith(u"awsSessionToken"_s, u"IQoJb3JpZ2lu+/="_s)));
    EXPECT_TRUE(readPlace(placeWith(u"awsSessionToken"_s, QString())));
    for (const QString &field : {u"awsAccessKeyId"_s, u"awsSessionToken"_s}) {
        for (const QString &value : {u"a\r\nX-Other: 1"_s, u"a\nb"_s, u"a b"_s, u"a\u00e4"_s, u"a\u007f"_s})
            EXPECT_FALSE(readPlace(placeWith(field, value))) << field.toStdString();
    }
    EXPECT_FALSE(readPlace(placeWith(u"awsAccessKeyId"_s, QString())));
    EXPECT_FALSE(readPlace(placeWith(u"awsSecretAccessKey"_s, QString())));
}

TEST(ForeignReplies, aRedirectIsFollowedOnceWithoutTheRequestsHeaders)
{
    Answers answers({redirectTo("/elsewhere?x=1"), good});
    const HttpReply reply = fetch(answers.origin() + "/log");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, "good");
    ASSERT_EQ(answers.asked().size(), 2);
    EXPECT_TRUE(answers.asked().first().contains("secret"));
    EXPECT_TRUE(answers.asked().last().startsWith("GET /elsewhere?x=1 HTTP/1.1\r\n"));
    EXPECT_FALSE(answers.asked().last().contains("secret"));
}

TEST(ForeignReplies, aSecondRedirectAndOneToAnotherKindOfAddressAreNotFollowed)
{
    Answers twice({redirectTo("/elsewhere"), redirectTo("/log")});
    EXPECT_EQ(fetch(twice.origin() + "/log").status, 302);
    for (const QByteArray place : {"ftp://127.0.0.1/x", "file:///etc/passwd", "http://example.com/"}) {
        Answers answers({redirectTo(place)});
        EXPECT_EQ(fetch(answers.origin() + "/log").status, 302) << place.toStdString();
    }
}

TEST(ForeignReplies, aPauseMayBeAskedForInSecondsAndByTheTimeOfDay)
{
    const QByteArray scale = qgetenv("SEALWRIGHT_WAIT_SCALE");
    qputenv("SEALWRIGHT_WAIT_SCALE", "0.5");
    for (const char *pause : {"2", "Sun, 06 Nov 1994 08:49:39 GMT"}) {
        HttpReply reply;
        reply.status = 503;
        reply.headers = {{"date", "Sun, 06 Nov 1994 08:49:37 GMT"}, {"retry-after", pause}};
        std::vector<std::chrono::steady_clock::time_point> tries;
        static_cast<void>(Retries().run(
            [&](const HttpRequest &) {
                tries.push_back(std::chrono::steady_clock::now());
                return reply;
            },
            [&](const HttpReply &) { return tries.size() < 2 ? NextStep::tryLater : NextStep::take; }));
        ASSERT_EQ(tries.size(), 2U);
        EXPECT_GE(tries.back() - tries.front(), std::chrono::seconds(1)) << pause;
    }
    qputenv("SEALWRIGHT_WAIT_SCALE", scale);
}

TEST(ForeignReplies, aLogOfAnotherRequestIsNone)
{
    const QString id = u"2efe2717-52ef-43a5-96dc-0797e4ca1041"_s;
    EXPECT_TRUE(isLogOf(id, R"({"jobId":"2efe2717-52ef-43a5-96dc-0797e4ca1041"})"));
    EXPECT_TRUE(isLogOf(id, R"({"jobId":"2EFE2717-52EF-43A5-96DC-0797E4CA1041","issues":null})"));
    for (const char *log : {R"({"jobId":"2efe2717-52ef-43a5-96dc-0797e4ca1042"})", R"({"jobId":null})", "{}",
                            R"(["2efe2717-52ef-43a5-96dc-0797e4ca1041"])", "no JSON", ""})
        EXPECT_FALSE(isLogOf(id, log)) << log;
}
