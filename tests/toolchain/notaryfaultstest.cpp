// Every trouble at every call, once, thrice and for ever: what the client makes of it, and what that costs.

#include "toolchain/bundlebuilder.h"
#include "toolchain/notaryfixture.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// What becomes of a call that meets a trouble.
enum class Cure {
    Waiting, ///< it passes within the call's four tries
    Nothing, ///< it spoils nothing, however often it comes
    Remedy, ///< the client puts something right, once
    None ///< the first time is the last word
};

struct Trouble {
    const char *fault;
    const char *value;
    Cure cure;
    QList<const NotaryCall *> calls;
};

const QList<const NotaryCall *> api{&listing, &submitting, &asking, &logging};
const QList<const NotaryCall *> all{&listing, &submitting, &putting, &asking, &logging, &reading};
const QList<const NotaryCall *> storage{&putting};

const QList<Trouble> &troubles()
{
    static const QList<Trouble> list{
        {"status", "500", Cure::Waiting, all},
        {"status", "502", Cure::Waiting, all},
        {"status", "503", Cure::Waiting, all},
        {"status", "504", Cure::Waiting, all},
        {"status", R"({"code":429,"retryAfter":3})", Cure::Waiting, all},
        {"status", "429", Cure::Waiting, all},
        {"close", "", Cure::Waiting, all},
        {"reset", "", Cure::Waiting, all},
        {"cut", "10", Cure::Waiting, all},
        {"cut", "0", Cure::Waiting, all},
        {"not-json", "", Cure::Waiting, api},
        {"huge", "6000000", Cure::Waiting, api},
        {"missing-field", R"("data")", Cure::Waiting, api},
        {"s3-error", R"("SlowDown")", Cure::Waiting, storage},
        {"s3-error", R"("InternalError")", Cure::Waiting, storage},
        {"s3-error", R"({"code":"RequestTimeout","late":true})", Cure::Waiting, storage},
        {"s3-error", R"({"code":"InternalError","late":true})", Cure::Waiting, storage},
        {"delay", "0.05", Cure::Nothing, all},
        {"stall", "0.05", Cure::Nothing, all},
        {"drip", "50000", Cure::Nothing, all},
        {"slow-read", "1000000", Cure::Nothing, all},
        {"status", "401", Cure::Remedy, api},
        {"s3-error", R"("ExpiredToken")", Cure::Remedy, storage},
        {"s3-error", R"({"code":"ExpiredToken","late":true})", Cure::Remedy, storage},
        {"s3-error", R"("RequestTimeTooSkewed")", Cure::Remedy, storage},
        {"status", "400", Cure::None, all},
        {"status", R"({"code":403,"kind":"agreement"})", Cure::None, all},
        {"status", R"({"code":403,"kind":"provider"})", Cure::None, api},
        {"status", R"({"code":400,"kind":"html"})", Cure::None, api},
        {"status", "404", Cure::None, {&submitting, &asking}},
        {"s3-error", R"("AccessDenied")", Cure::None, storage},
        {"s3-error", R"("SignatureDoesNotMatch")", Cure::None, storage},
        {"s3-error", R"("InvalidAccessKeyId")", Cure::None, storage},
        {"s3-error", R"("BadDigest")", Cure::None, storage},
        {"s3-error", R"("EntityTooLarge")", Cure::None, storage},
        {"s3-error", R"({"code":"XAmzContentSHA256Mismatch","late":true})", Cure::None, storage},
        {"s3-error", R"("PermanentRedirect")", Cure::None, storage},
    };
    return list;
}

/// A log is asked for under three addresses, one after the other, so that one last word is not the last.
bool passes(Cure cure, const NotaryCall &call, int count)
{
    return cure == Cure::Nothing || (cure == Cure::Waiting && count > 0)
        || (cure == Cure::Remedy && count == 1) || (&call == &reading && count == 1);
}

bool isOfLog(const NotaryCall &call)
{
    return &call == &logging || &call == &reading;
}

class NotaryFaults : public NotaryFixture {
protected:
    void SetUp() override
    {
        NotaryFixture::SetUp();
        m_decided = decidedRequest();
        m_archive = makeArchive();
        m_bytes = bundlebuilder::readFile(m_archive);
    }

    /// Each seventh, so that every trouble and every call has its turn, unless SEALWRIGHT_WHOLE_MATRIX asks
    /// for all.
    static bool isAmongThoseTried()
    {
        static int number = 0;
        return number++ % 7 == 0 || qEnvironmentVariableIsSet("SEALWRIGHT_WHOLE_MATRIX");
    }

    void meet(const Trouble &trouble, const NotaryCall &call, int count)
    {
        SCOPED_TRACE(std::string(trouble.fault) + ' ' + trouble.value + " at " + call.name + ", "
                     + std::to_string(count) + " times");
        forgetRequests();
        ASSERT_EQ(setFaults(faultAt(call, trouble.fault, count, trouble.value)), 200);
        const ToolResult result = run(xcrun, commandFor(call, m_archive, m_decided));
        if (isOfLog(call))
            expectVerdict(result, passes(trouble.cure, call, count));
        else
            expectEnd(result, passes(trouble.cure, call, count));
        EXPECT_LE(requestsTo(call), isOfLog(call) ? 12 : 4);
        EXPECT_EQ(bundlebuilder::readFile(m_archive), m_bytes);
        expectNoSecretIn(result);
    }

    /// The verdict stands whatever becomes of the log.
    static void expectVerdict(const ToolResult &result, bool hasLog)
    {
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_TRUE(result.output.contains(u"Status: invalid\n"_s)) << result.output.toStdString();
        EXPECT_EQ(result.output.contains(u"LogFileURL: file:///"_s), hasLog) << result.error.toStdString();
        EXPECT_EQ(result.error.contains(u"warning: the log is not to be had: "_s), !hasLog);
    }

    /// A failure is told on one line of its own, which is no gateway's page.
    static void expectEnd(const ToolResult &result, bool isGood)
    {
        EXPECT_EQ(result.status == 0, isGood) << result.error.toStdString();
        EXPECT_EQ(result.output.isEmpty(), !isGood) << result.output.toStdString();
        EXPECT_EQ(result.error.count(u"*** Error: "_s), isGood ? 0 : 1) << result.error.toStdString();
        EXPECT_FALSE(result.error.contains(u'<')) << result.error.toStdString();
    }

    static void expectNoSecretIn(const ToolResult &result)
    {
        static const QRegularExpression secret(
            u"eyJ[A-Za-z0-9_-]{10}|Bearer |ASIA[A-Z2-7]{16}|Signature=|PRIVATE KEY|uploadId=|Credential="_s);
        EXPECT_FALSE(secret.match(result.output + result.error).hasMatch()) << result.error.toStdString();
    }

    QString m_decided;
    QString m_archive;
    QByteArray m_bytes;
};

} // namespace

TEST_F(NotaryFaults, endAsTheyAreToAtEveryCallOnceThriceAndForEver)
{
    for (const Trouble &trouble : troubles()) {
        for (const NotaryCall *call : trouble.calls) {
            for (const int count : {1, 3, -1}) {
                if (isAmongThoseTried())
                    meet(trouble, *call, count);
            }
        }
    }
}

TEST_F(NotaryFaults, troubleForEverIsMetFourTimes)
{
    for (const NotaryCall *call : {&listing, &submitting, &putting, &asking}) {
        forgetRequests();
        ASSERT_EQ(setFaults(faultAt(*call, "status", -1, "503")), 200);
        EXPECT_EQ(run(xcrun, commandFor(*call, m_archive, m_decided)).status, 1);
        EXPECT_EQ(requestsTo(*call), 4) << call->name;
    }
}
