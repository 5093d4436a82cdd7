// Every trouble at the lookup of a ticket, once, thrice and for ever: what the stapler makes of it.

#include "toolchain/bundlebuilder.h"
#include "toolchain/notaryfixture.h"

#include <QFile>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

constexpr int noTicket = 65;
constexpr int noService = 68;

/// What becomes of the stapling when the trouble comes so often. A question has four tries, and a ticket that
/// is not there is asked for six times.
struct Trouble {
    const char *fault;
    const char *value;
    int onceAndThrice; ///< the exit status
    int forEver;
};

constexpr Trouble troubles[] = {
    {"status", "500", 0, noService},
    {"status", "502", 0, noService},
    {"status", "503", 0, noService},
    {"status", "504", 0, noService},
    {"status", R"({"code":429,"retryAfter":3})", 0, noService},
    {"close", "", 0, noService},
    {"reset", "", 0, noService},
    {"cut", "20", 0, noService},
    {"not-json", "", 0, noService},
    {"huge", "6000000", 0, noService},
    {"missing-field", R"("records")", 0, noService},
    {"missing-field", R"("recordName")", 0, noService},
    {"missing-field", R"("fields")", 0, noTicket},
    {"missing-field", R"("value")", 0, noTicket},
    {"delay", "0.05", 0, 0},
    {"stall", "0.05", 0, 0},
    {"drip", "50000", 0, 0},
    {"slow-read", "100000", 0, 0},
    {"clock", "100000", 0, 0},
    {"status", "400", noService, noService},
    {"status", "403", noService, noService},
    {"status", "404", noService, noService},
};

class TicketFaults : public NotaryFixture {
protected:
    void SetUp() override
    {
        NotaryFixture::SetUp();
        makeIdentity();
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
        ASSERT_EQ(
            run(codesign, {u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"-s"_s, identity, app()})
                .status,
            0);
        ASSERT_EQ(pack(app(), path(u"App.zip"_s)).status, 0);
        const ToolResult report = pollToTheEnd(uuidIn(upload(path(u"App.zip"_s))));
        ASSERT_TRUE(report.output.contains(u"Status: success"_s)) << report.output.toStdString();
    }

    [[nodiscard]] QString app() const { return path(u"App.app"_s); }
    [[nodiscard]] QString ticket() const { return app() + u"/Contents/CodeResources"_s; }
    [[nodiscard]] ToolResult staple() const { return run(xcrun, {u"stapler"_s, u"staple"_s, app()}); }

    static inline const NotaryCall lookingUp{"the lookup", "/records/lookup$", "POST"};

    void meet(const Trouble &trouble, int count)
    {
        SCOPED_TRACE(std::string(trouble.fault) + ' ' + trouble.value + ", " + std::to_string(count)
                     + " times");
        QFile::remove(ticket());
        forgetRequests();
        ASSERT_EQ(setFaults(faultAt(lookingUp, trouble.fault, count, trouble.value)), 200);
        const int status = count > 0 ? trouble.onceAndThrice : trouble.forEver;
        const ToolResult result = staple();
        EXPECT_EQ(result.status, status) << result.output.toStdString() << result.error.toStdString();
        EXPECT_EQ(QFile::exists(ticket()), status == 0);
        EXPECT_LE(requestsTo(lookingUp), status == noTicket ? 6 : 4);
        EXPECT_EQ(result.output.contains(u"The staple and validate action worked!"_s), status == 0);
        EXPECT_EQ(result.output.contains(u"The staple and validate action failed! Error %1."_s.arg(status)),
                  status != 0);
    }
};

} // namespace

TEST_F(TicketFaults, endAsTheyAreToOnceThriceAndForEver)
{
    for (const Trouble &trouble : troubles) {
        for (const int count : {1, 3, -1})
            meet(trouble, count);
    }
}

TEST_F(TicketFaults, aTicketThatIsLateIsWaitedFor)
{
    ASSERT_EQ(setFaults(R"([{"fault":"no-ticket-for","value":1000}])"), 200);
    const ToolResult late = staple();
    EXPECT_EQ(late.status, noTicket);
    EXPECT_TRUE(late.output.contains(u"failed due to \"Record not found\"."_s)) << late.output.toStdString();
    EXPECT_EQ(requestsTo(lookingUp), 6);
    ASSERT_EQ(setFaults(R"([{"fault":"no-ticket-for","value":0}])"), 200);
    EXPECT_EQ(staple().status, 0);
}
