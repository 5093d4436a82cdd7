// Every trouble at every call, once, thrice and for ever: what the client makes of it, and what that costs.

#include "toolchain/bundlebuilder.h"
#include "toolchain/notaryfixture.h"

#include <QRegularExpression>

#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// What becomes of a call that meets a trouble.
enum class Cure {
    waiting, ///< it passes within the call's four tries
    nothing, ///< it spoils nothing, however often it comes
    remedy, ///< the client puts something right, once
    none ///< the first time is the last word
};

struct Trouble {
    const char *fault;
    const char *value;
    Cure cure;
    QList<const NotaryCall *> calls;
    const char16_t *told; ///< what stands in the line that tells of a failure
};

const QList<const NotaryCall *> api{&listing, &submitting, &asking, &logging};
const QList<const NotaryCall *> storage{&putting, &beginningParts, &puttingPart, &completingParts};
const QList<const NotaryCall *> all = api + storage + QList<const NotaryCall *>{&reading};

/// The fault that concerns it alone passes the beginning by itself.
constexpr NotaryCall ending{"the end of parts", "^/s3/", "POST", 0, true};

const char16_t *const brokeOff = u" could not be reached or broke off: ";
const char16_t *const notUnderstood = u"reply was not understood: ";

/// What a gateway, a network or a service in trouble does.
const QList<Trouble> &troublesOfTheWay()
{
    static const QList<Trouble> list{
        {"status", "500", Cure::waiting, all, u"HTTP status 500"},
        {"status", R"({"code":500,"kind":"html"})", Cure::waiting, all, u"HTTP status 500"},
        {"status", "502", Cure::waiting, all, u"HTTP status 502"},
        {"status", "503", Cure::waiting, all, u"HTTP status 503"},
        {"status", R"({"code":503,"kind":"json"})", Cure::waiting, all, u"HTTP status 503"},
        {"status", "504", Cure::waiting, all, u"HTTP status 504"},
        {"status", R"({"code":504,"kind":"text"})", Cure::waiting, all, u"HTTP status 504"},
        {"status", R"({"code":429,"retryAfter":3})", Cure::waiting, all, u"429"},
        {"status", "429", Cure::waiting, all, u"429"},
        {"close", "", Cure::waiting, all, brokeOff},
        {"reset", "", Cure::waiting, all, brokeOff},
        {"reset", "1000", Cure::waiting, {&putting, &puttingPart}, brokeOff},
        {"cut", "10", Cure::waiting, all, brokeOff},
        {"cut", "0", Cure::waiting, all, brokeOff},
        {"delay", "0.05", Cure::nothing, all, u""},
        {"stall", "0.05", Cure::nothing, all, u""},
        {"drip", "50000", Cure::nothing, all, u""},
        {"slow-read", "1000000", Cure::nothing, api, u""},
        {"slow-read", "1000000", Cure::nothing, {&putting, &reading}, u""},
        {"clock", "1500", Cure::nothing, api + storage, u""},
        {"clock", "-1500", Cure::nothing, api + storage, u""},
    };
    return list;
}

/// What the service itself answers.
const QList<Trouble> &troublesOfTheService()
{
    static const QList<Trouble> list{
        {"not-json", "", Cure::waiting, api, notUnderstood},
        {"huge", "6000000", Cure::waiting, api, u"the reply has more than 5000000 bytes"},
        {"huge", "6000000", Cure::nothing, {&reading}, u""},
        {"missing-field", R"("data")", Cure::waiting, api, notUnderstood},
        {"missing-field", R"("attributes")", Cure::waiting, {&submitting, &asking, &logging}, notUnderstood},
        {"missing-field", R"("status")", Cure::waiting, {&asking}, notUnderstood},
        {"missing-field", R"("status")", Cure::nothing, {&listing}, u""},
        {"missing-field", R"("createdDate")", Cure::nothing, {&listing, &asking}, u""},
        {"missing-field", R"("id")", Cure::nothing, {&listing, &asking, &logging}, u""},
        {"missing-field", R"("id")", Cure::waiting, {&submitting}, notUnderstood},
        {"missing-field", R"("bucket")", Cure::waiting, {&submitting}, notUnderstood},
        {"missing-field", R"("object")", Cure::waiting, {&submitting}, notUnderstood},
        {"missing-field", R"("awsAccessKeyId")", Cure::waiting, {&submitting}, notUnderstood},
        {"missing-field", R"("awsSecretAccessKey")", Cure::waiting, {&submitting}, notUnderstood},
        {"missing-field", R"("awsSessionToken")", Cure::none, {&submitting}, u"InvalidToken"},
        {"missing-field", R"("developerLogUrl")", Cure::waiting, {&logging}, notUnderstood},
        {"missing-field", R"("jobId")", Cure::none, {&reading}, notUnderstood},
        {"log-not-json", "", Cure::none, {&reading}, notUnderstood},
        {"status", "401", Cure::remedy, api, u"did not accept the API key (HTTP 401)"},
        {"status", R"({"code":401,"kind":"json"})", Cure::remedy, api,
         u"did not accept the API key (HTTP 401)"},
        {"status", R"({"code":401,"kind":"html"})", Cure::remedy, api,
         u"did not accept the API key (HTTP 401)"},
        {"status", "400", Cure::none, all, u"HTTP status 400"},
        {"status", R"({"code":400,"kind":"json"})", Cure::none, all, u"HTTP status 400"},
        {"status", R"({"code":403,"kind":"agreement"})", Cure::none, api,
         u"A required agreement is missing or has expired."},
        {"status", R"({"code":403,"kind":"provider"})", Cure::none, api, u"This provider does not exist."},
        {"status", R"({"code":403,"kind":"html"})", Cure::none, all, u"403"},
        {"status", "404", Cure::none, {&submitting}, u"HTTP status 404"},
        {"status", "404", Cure::none, {&asking}, u"Could not find the RequestUUID."},
        {"status", "404", Cure::nothing, {&listing}, u""},
        {"status", "404", Cure::none, storage + QList<const NotaryCall *>{&reading}, u"HTTP status 404"},
        {"status", "401", Cure::none, storage + QList<const NotaryCall *>{&reading}, u"401"},
    };
    return list;
}

/// What the storage answers, before it has read a body or after.
const QList<Trouble> &troublesOfTheStorage()
{
    struct Code {
        const char *name;
        Cure cure;
        const char16_t *told;
    };
    static const Code codes[] = {
        {"SlowDown", Cure::waiting, u"the storage asks to slow down"},
        {"InternalError", Cure::waiting, u"the storage has an internal error"},
        {"RequestTimeout", Cure::waiting, u"waited too long for the file's bytes"},
        {"ExpiredToken", Cure::remedy, u"the upload's credentials have expired"},
        {"NoSuchUpload", Cure::remedy, u"does not know the upload any more"},
        {"RequestTimeTooSkewed", Cure::remedy, u"differs from the storage's by more than 15 minutes"},
        {"AccessDenied", Cure::none, u"the storage denies the access"},
        {"SignatureDoesNotMatch", Cure::none, u"does not accept the request's signature"},
        {"InvalidAccessKeyId", Cure::none, u"does not know the upload's credentials"},
        {"BadDigest", Cure::none, u"the file was changed while it was being uploaded"},
        {"XAmzContentSHA256Mismatch", Cure::none, u"the file was changed while it was being uploaded"},
        {"EntityTooLarge", Cure::none, u"the file is too large for the storage"},
        {"PermanentRedirect", Cure::none, u"the storage is at another address or in another region"},
        {"TemporaryRedirect", Cure::none, u"the storage is at another address or in another region"},
    };
    static const QList<Trouble> list = [] {
        QList<Trouble> made;
        static QList<QByteArray> values; // the troubles point into them
        values.reserve(qsizetype(std::size(codes)) * 2);
        for (const Code &code : codes) {
            values.append('"' + QByteArray(code.name) + '"');
            made.append({"s3-error", values.last().constData(), code.cure, storage, code.told});
            made.append({"complete-error", values.last().constData(), code.cure, {&ending}, code.told});
            values.append(R"({"code":")" + QByteArray(code.name) + R"(","late":true})");
            made.append({"s3-error", values.last().constData(), code.cure, storage, code.told});
        }
        return made;
    }();
    return list;
}

/// A log is asked for under three addresses, one after the other, so that one last word is not the last.
bool passes(Cure cure, const NotaryCall &call, int count)
{
    return cure == Cure::nothing || (cure == Cure::waiting && count > 0)
        || (cure == Cure::remedy && count == 1) || (&call == &reading && count == 1);
}

bool isOfLog(const NotaryCall &call)
{
    return &call == &logging || &call == &reading;
}

/// A call's tries, of which a log's address has three times as many; a part that fails is one of three, and
/// an upload may begin anew.
int mostRequests(const NotaryCall &call)
{
    return isOfLog(call) || call.isOfParts ? 12 : 4;
}

class NotaryFaults : public NotaryFixture {
protected:
    void SetUp() override
    {
        NotaryFixture::SetUp();
        m_decided = decidedRequest();
        m_archive = makeArchive();
        m_bytes = bundlebuilder::readFile(m_archive);
        m_large = makeArchive(u"Large.zip"_s, (128LL << 20) + 1);
    }

    /// One of so many, so that every trouble and every call has its turn, unless SEALWRIGHT_WHOLE_MATRIX asks
    /// for all. Parts cost most.
    bool isAmongThoseTried(const NotaryCall &call)
    {
        int &number = call.isOfParts ? m_numberOfParts : m_number;
        return number++ % (call.isOfParts ? 37 : 11) == 0
            || qEnvironmentVariableIsSet("SEALWRIGHT_WHOLE_MATRIX");
    }

    void meetAll(const QList<Trouble> &troubles)
    {
        for (const Trouble &trouble : troubles) {
            for (const NotaryCall *call : trouble.calls) {
                for (const int count : {1, 3, -1}) {
                    if (isAmongThoseTried(*call))
                        meet(trouble, *call, count);
                }
            }
        }
    }

    void meet(const Trouble &trouble, const NotaryCall &call, int count)
    {
        SCOPED_TRACE(std::string(trouble.fault) + ' ' + trouble.value + " at " + call.name + ", "
                     + std::to_string(count) + " times");
        forgetRequests();
        ASSERT_EQ(setFaults(faultAt(call, trouble.fault, count, trouble.value)), 200);
        const bool isGood = passes(trouble.cure, call, count);
        const ToolResult result =
            run(xcrun, commandFor(call, call.isOfParts ? m_large : m_archive, m_decided));
        if (isOfLog(call))
            expectVerdict(result, isGood);
        else
            expectEnd(result, isGood);
        EXPECT_TRUE(isGood || failureIn(result).contains(QString::fromUtf16(trouble.told)))
            << result.error.toStdString();
        EXPECT_LE(requestsTo(call), mostRequests(call));
        EXPECT_EQ(bundlebuilder::readFile(m_archive), m_bytes);
        expectNoSecretIn(result);
    }

    /// After the last byte, or in the time that the whole call has.
    static bool saysThatNothingCame(const ToolResult &result)
    {
        return failureIn(result).contains(u"nothing came for "_s)
            || failureIn(result).contains(u"no whole reply came in time"_s);
    }

    /// The line that tells of a failure.
    static QString failureIn(const ToolResult &result)
    {
        static const QRegularExpression line(u"(?m)^altool.*( \\*\\*\\* Error: |warning: the log ).*$"_s);
        return line.match(result.error).captured();
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
    QString m_large; ///< goes in parts
    int m_number = 0;
    int m_numberOfParts = 0;
};

} // namespace

TEST_F(NotaryFaults, ofTheWayEndAsTheyAreToAtEveryCallOnceThriceAndForEver)
{
    meetAll(troublesOfTheWay());
}

TEST_F(NotaryFaults, ofTheServiceEndAsTheyAreToAtEveryCallOnceThriceAndForEver)
{
    meetAll(troublesOfTheService());
}

TEST_F(NotaryFaults, ofTheStorageEndAsTheyAreToAtEveryCallOnceThriceAndForEver)
{
    meetAll(troublesOfTheStorage());
}

/// All wait at the same time, each on a call of its own.
TEST_F(NotaryFaults, silenceAtEveryCallIsGivenUp)
{
    const QString reported = decidedRequest();
    const QString logged = decidedRequest();
    const QByteArray asked = "/submissions/" + m_decided.toLatin1() + '$';
    const QByteArray addressed = "/submissions/" + reported.toLatin1() + "/logs$";
    const QByteArray read = "^/artifacts/" + logged.toLatin1();
    const NotaryCall ask{asking.name, asked.constData(), "GET"};
    const NotaryCall address{logging.name, addressed.constData(), "GET"};
    const NotaryCall log{reading.name, read.constData(), "GET"};
    const NotaryCall submitLater{submitting.name, submitting.pattern, "POST", 1}; // the upload's goes before
    QByteArrayList faults;
    for (const NotaryCall *call : {&listing, &putting, &submitLater, &ask, &address, &log})
        faults.append(faultAt(*call, "stall", -1).chopped(1).sliced(1));
    forgetRequests();
    ASSERT_EQ(setFaults('[' + faults.join(',') + ']'), 200);
    std::vector<std::unique_ptr<QProcess>> ordinary;
    ordinary.push_back(start(xcrun, commandFor(putting, m_archive, {})));
    ASSERT_TRUE(waitUntil([this] { return requestsTo(putting) > 0; }));
    ordinary.push_back(start(xcrun, commandFor(submitting, m_archive, {})));
    ordinary.push_back(start(xcrun, commandFor(listing, {}, {})));
    ordinary.push_back(start(xcrun, commandFor(asking, {}, m_decided)));
    const auto ofAddress = start(xcrun, commandFor(logging, {}, reported));
    const auto ofLog = start(xcrun, commandFor(reading, {}, logged));
    for (const auto &process : ordinary) {
        const ToolResult result = finish(*process);
        expectEnd(result, false);
        EXPECT_TRUE(saysThatNothingCame(result)) << result.error.toStdString();
    }
    for (QProcess *process : {ofAddress.get(), ofLog.get()}) {
        const ToolResult result = finish(*process);
        expectVerdict(result, false);
        EXPECT_TRUE(saysThatNothingCame(result)) << result.error.toStdString();
    }
    for (const NotaryCall *call : {&listing, &putting, &ask, &address, &log})
        EXPECT_LE(requestsTo(*call), 4) << call->name;
    EXPECT_LE(requestsTo(submitting), 5);
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
