// The client of the notary service and the service of this machine, over TLS, on good days and on bad ones.

#include "toolchain/bundlebuilder.h"
#include "toolchain/notaryfixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <vector>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class NotaryService : public NotaryFixture {
protected:
    /// Of the item, as they stand in a regular expression.
    [[nodiscard]] QStringList linesOfPrivateKey() const
    {
        const ToolResult item = run(security, {u"find-generic-password"_s, u"-s"_s, u"item"_s, u"-w"_s});
        QStringList lines;
        for (const QString &line :
             QJsonDocument::fromJson(item.output.toUtf8())[u"private_key"].toString().split(u'\n')) {
            if (line.size() > 20 && !line.startsWith(u'-'))
                lines.append(QRegularExpression::escape(line));
        }
        return lines;
    }

    /// The command line and the environment of the service's process.
    [[nodiscard]] QString saidByService() const
    {
        const QByteArray address = readFile(statePath(u"notary/service/address.json"_s));
        const QString process = u"/proc/%1/"_s.arg(QJsonDocument::fromJson(address)[u"pid"].toInteger());
        QByteArray said = readFile(process + u"cmdline"_s) + readFile(process + u"environ"_s);
        EXPECT_TRUE(said.contains("sealwright-notaryd"));
        return QString::fromUtf8(said.replace('\0', '\n'));
    }
};

} // namespace

TEST_F(NotaryService, aRefusalIsFinalAndSaysWhy)
{
    const struct {
        const char *value;
        const char16_t *said;
        int requests;
    } refusals[] = {
        {"401", u"API key", 2},
        {"401", u"sealwright-keychain make-api-key", 2},
        {R"({"code":403,"kind":"agreement"})", u"A required agreement is missing or has expired.", 1},
        {R"({"code":403,"kind":"agreement"})", u"The team's account holder has to sign it", 1},
        {R"({"code":403,"kind":"provider"})", u"This provider does not exist.", 1},
        {"400", u"HTTP status 400", 1}};
    for (const auto &refusal : refusals) {
        forgetRequests();
        ASSERT_EQ(setFaults(faultAt(listing, "status", -1, refusal.value)), 200);
        const ToolResult reply = altool({u"--notarization-history"_s, u"0"_s});
        EXPECT_EQ(reply.status, 1);
        EXPECT_EQ(reply.output, QString());
        EXPECT_TRUE(reply.error.contains(QString::fromUtf16(refusal.said))) << reply.error.toStdString();
        EXPECT_FALSE(reply.error.contains(u'<')) << reply.error.toStdString();
        EXPECT_EQ(requestsTo(listing), refusal.requests) << refusal.value;
    }
}

TEST_F(NotaryService, aSilentServiceIsGivenUp)
{
    ASSERT_EQ(setFaults(faultAt(listing, "stall", -1)), 200);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).status, 1);
}

TEST_F(NotaryService, aSlowServiceCostsPatienceAndNoResult)
{
    ASSERT_EQ(
        setFaults(R"([{"fault":"delay","value":0.5,"count":-1},{"fault":"drip","value":2000,"count":-1}])"),
        200);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).status, 0);
    EXPECT_FALSE(uuidIn(upload(makeArchive())).isEmpty());
    ASSERT_EQ(setFaults(R"([{"fault":"slow-read","value":40000,"path":"^/s3/","count":-1}])"), 200);
    EXPECT_FALSE(uuidIn(upload(makeArchive(u"Slow.zip"_s, 60'000))).isEmpty());
}

TEST_F(NotaryService, anUnknownStatusIsNoRefusal)
{
    const QString uuid = decidedRequest();
    ASSERT_EQ(setFaults(R"([{"fault":"unknown-status","value":"Under Deep \u001b[31mAnalysis","count":-1}])"),
              200);
    const ToolResult report = info(uuid);
    EXPECT_EQ(report.status, 0);
    EXPECT_TRUE(report.output.contains(u"Status: in progress\n"_s)) << report.output.toStdString();
    EXPECT_TRUE(report.error.contains(u"Under Deep"_s));
    EXPECT_FALSE(report.error.contains(QChar(27)));
}

TEST_F(NotaryService, aReplyWithoutAStatusIsAFailureAndNoVerdict)
{
    const QString uuid = decidedRequest();
    for (const char *field : {"status", "attributes", "data"}) {
        ASSERT_EQ(setFaults(faultAt(asking, "missing-field", -1, QByteArray("\"") + field + '"')), 200);
        const ToolResult report = info(uuid);
        EXPECT_EQ(report.status, 1) << field;
        EXPECT_FALSE(report.output.contains(u"Status:"_s));
    }
}

TEST_F(NotaryService, aRequestThatIsNotKnownYetOrAnyMoreHasTheStatusOfItsOwn)
{
    const QString uuid = decidedRequest();
    ASSERT_EQ(setFaults(R"([{"fault":"unknown-at-first","value":2}])"), 200);
    EXPECT_EQ(info(uuid).status, 239);
    EXPECT_EQ(info(uuid).status, 239);
    EXPECT_EQ(info(uuid).status, 0);
    ASSERT_EQ(setFaults(R"([{"fault":"vanishes","value":0}])"), 200);
    EXPECT_EQ(info(uuid).status, 239);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).output, u"No items found.\n"_s);
}

TEST_F(NotaryService, aRequestThatIsNeverDecidedStaysInProgress)
{
    const QString uuid = decidedRequest();
    ASSERT_EQ(setFaults(R"([{"fault":"never-decided"}])"), 200);
    EXPECT_TRUE(info(uuid).output.contains(u"Status: in progress\n"_s));
    EXPECT_TRUE(info(uuid).output.contains(u"Status: in progress\n"_s));
}

TEST_F(NotaryService, aLogThatIsNotToBeHadCostsItsLineAndNothingElse)
{
    const QString uuid = decidedRequest();
    ASSERT_EQ(setFaults(R"([{"fault":"no-log-at-first","value":2}])"), 200);
    EXPECT_TRUE(info(uuid).output.contains(u"LogFileURL: file:///"_s));
    for (const QByteArray &faults : {QByteArray(R"([{"fault":"no-log-at-first","value":99}])"),
                                     QByteArray(R"([{"fault":"log-not-json","count":-1}])")}) {
        ASSERT_EQ(setFaults(faults), 200);
        const ToolResult report = info(uuid);
        EXPECT_EQ(report.status, 0);
        EXPECT_TRUE(report.output.contains(u"Status: invalid\n"_s));
        EXPECT_FALSE(report.output.contains(u"LogFileURL"_s));
        EXPECT_TRUE(report.error.contains(u"warning: the log is not to be had"_s))
            << report.error.toStdString();
    }
}

TEST_F(NotaryService, aClockThatIsWrongIsCorrectedAndTold)
{
    for (const char *seconds : {"1500", "-1500", "90000"}) {
        ASSERT_EQ(setFaults(QByteArray(R"([{"fault":"clock","value":)") + seconds + "}]"), 200);
        const ToolResult reply = upload(makeArchive());
        EXPECT_EQ(reply.status, 0) << seconds << ' ' << reply.error.toStdString();
        EXPECT_TRUE(reply.error.contains(u"this machine's clock is"_s));
    }
}

TEST_F(NotaryService, aBigFileGoesInPartsAndWhatTheStorageSaysInASuccessIsRead)
{
    const QString big = makeArchive(u"Big.zip"_s, (128LL << 20) + 1);
    ASSERT_EQ(setFaults(R"([{"fault":"complete-error","value":"InternalError","count":1},
                            {"fault":"reset","path":"^/s3/","method":"PUT","value":30000000,"skip":1,"count":1}])"),
              200);
    const ToolResult reply = upload(big);
    EXPECT_EQ(reply.status, 0) << reply.error.toStdString();
    EXPECT_EQ(requestsTo(putting), 6); // five parts, one of them twice
    ASSERT_EQ(setFaults(R"([{"fault":"complete-error","value":"AccessDenied","count":-1}])"), 200);
    const ToolResult refused = upload(big);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains(u"AccessDenied"_s)) << refused.error.toStdString();
}

TEST_F(NotaryService, aRefusalOfAPartEndsThoseThatAreUnderWay)
{
    const QString big = makeArchive(u"Big.zip"_s, (128LL << 20) + 1);
    ASSERT_EQ(setFaults(R"([{"fault":"delay","path":"^/s3/","method":"PUT","count":1},
                            {"fault":"s3-error","value":"AccessDenied","method":"PUT","skip":1,"count":-1}])"),
              200);
    const ToolResult refused = upload(big);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains(u"AccessDenied"_s)) << refused.error.toStdString();
    EXPECT_EQ(requestsTo(putting), 2); // the one that is held up is not tried again
}

TEST_F(NotaryService, anEmptyFileIsRefusedBeforeAnyRequest)
{
    writeFile(path(u"empty.zip"_s), {});
    EXPECT_EQ(upload(path(u"empty.zip"_s)).status, 1);
    EXPECT_TRUE(requests().isEmpty());
}

TEST_F(NotaryService, aFileThatGrowsWhileItIsSentIsAFailure)
{
    const QString archive = makeArchive();
    ASSERT_EQ(setFaults(R"([{"fault":"delay","path":"^/s3/","count":-1}])"), 200);
    const auto sending = start(xcrun,
                               {u"altool"_s, u"--notarize-app"_s, u"-f"_s, archive, u"--primary-bundle-id"_s,
                                u"a.b"_s, u"-u"_s, u"me"_s, u"-p"_s, u"@keychain:item"_s});
    ASSERT_TRUE(waitUntil([this] { return requestsTo(submitting) > 0; }));
    QFile file(archive);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("more") == 4);
    file.close();
    const ToolResult reply = finish(*sending);
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(u"was changed while it was being uploaded"_s))
        << reply.error.toStdString();
}

TEST_F(NotaryService, anUploadSaysOnOneLineWhichServiceIsAsked)
{
    const ToolResult reply = upload(makeArchive());
    EXPECT_EQ(reply.error.count(u'\n'), 1) << reply.error.toStdString();
    EXPECT_TRUE(reply.error.contains(origin().remove(u"https://"_s))) << reply.error.toStdString();
}

TEST_F(NotaryService, anUploadSaysFirstWhereItGoesAlsoWithAKeyOfTheEnvironment)
{
    const ToolResult item = run(security, {u"find-generic-password"_s, u"-s"_s, u"item"_s, u"-w"_s});
    ASSERT_EQ(item.status, 0) << item.error.toStdString();
    qputenv("TST_NOTARY_KEY", item.output.toUtf8());
    const ToolResult reply =
        run(xcrun,
            {u"altool"_s, u"--notarize-app"_s, u"-f"_s, makeArchive(), u"--primary-bundle-id"_s, u"a.b"_s,
             u"-u"_s, u"me"_s, u"-p"_s, u"@env:TST_NOTARY_KEY"_s});
    qunsetenv("TST_NOTARY_KEY");
    EXPECT_EQ(reply.status, 0) << reply.error.toStdString();
    const QStringList lines = reply.error.split(u'\n');
    EXPECT_TRUE(lines.first().contains(origin().remove(u"https://"_s))) << reply.error.toStdString();
    EXPECT_TRUE(lines.value(1).startsWith(u"altool: warning: an environment"_s)) << reply.error.toStdString();
}

TEST_F(NotaryService, refusalsHaveTheFormsOfTheRealOnes)
{
    ASSERT_EQ(setFaults(R"([{"fault":"status","value":{"code":403,"kind":"provider"}},
                            {"fault":"status","value":{"code":429,"retryAfter":7}}])"),
              200);
    const auto provider = QJsonDocument::fromJson(ask("GET", u"/notary/v2/submissions"_s).body);
    EXPECT_EQ(provider[u"errors"][0][u"code"].toString(), u"FORBIDDEN.MISSING_PROVIDER"_s);
    EXPECT_EQ(provider[u"errors"][0][u"links"][u"see"].toString(), u"/landing"_s);
    const auto tooMany = ask("GET", u"/notary/v2/submissions"_s);
    EXPECT_EQ(tooMany.status, 429);
    EXPECT_EQ(tooMany.headers.value("retry-after"), "7");
    EXPECT_EQ(tooMany.headers.value("x-rate-limit"), "user-hour-lim:3500;user-hour-rem:0;");
    for (const QString &path :
         {u"/notary/v2/submissions"_s, u"/notary/v2/submissions/11111111-2222-3333-4444-555555555555"_s}) {
        const auto inLowerCase = ask("get", path);
        EXPECT_EQ(inLowerCase.status, 400) << path.toStdString();
        EXPECT_EQ(inLowerCase.headers.value("content-type"), "text/html");
    }
}

TEST_F(NotaryService, aFaultThatIsSetOnceMoreIsMetOnceMore)
{
    const QString uuid = decidedRequest();
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(setFaults(R"([{"fault":"unknown-at-first","value":1}])"), 200);
        EXPECT_EQ(info(uuid).status, 239) << round;
        EXPECT_EQ(info(uuid).status, 0) << round;
    }
}

TEST_F(NotaryService, aFaultThatIsNoneChangesNothing)
{
    ASSERT_EQ(setFaults(R"([{"fault":"status","value":404,"count":-1}])"), 200);
    for (const char *list :
         {"", "{}", "[{}]", R"([{"fault":"status"}])", R"([{"fault":"status","value":"x"}])",
          R"([{"fault":"status","value":99999}])", R"([{"fault":"nothing"}])",
          R"([{"fault":"cut","value":-1}])", R"([{"fault":"close","value":3}])",
          R"([{"fault":"s3-error","value":"NoSuchCode"}])", R"([{"fault":"close","path":"("}])",
          R"([{"fault":"close","count":-2}])", R"([{"fault":"close","skip":0.5}])",
          R"([{"fault":"close","more":1}])", R"([{"fault":"close"},{"fault":"status"}])"})
        EXPECT_EQ(setFaults(list), 400) << list;
    EXPECT_EQ(info(u"11111111-2222-3333-4444-555555555555"_s).status, 239);
    EXPECT_EQ(ask("POST", u"/control/reset"_s).status, 200);
    EXPECT_TRUE(requests().isEmpty());
}

TEST_F(NotaryService, aServiceOnDemandAnswersNoControl)
{
    ASSERT_TRUE(QDir(statePath(u"notary/service"_s)).exists());
    stopService();
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).status, 0) << "starts one of its own";
    EXPECT_EQ(ask("GET", u"/control/requests"_s).status, 404);
}

TEST_F(NotaryService, manyThatStartAtOnceFindOneService)
{
    stopService();
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int index = 0; index < 6; ++index)
        runs.push_back(start(xcrun,
                             {u"altool"_s, u"--notarization-history"_s, u"0"_s, u"-u"_s, u"me"_s, u"-p"_s,
                              u"@keychain:item"_s}));
    for (const auto &process : runs)
        EXPECT_EQ(finish(*process).status, 0);
}

TEST_F(NotaryService, aTicketIsLookedUpAsTheRealDatabaseIs)
{
    const QString lookup = QUrl(config().tickets).path();
    const auto reply =
        ask("POST", lookup, R"({"records":[{"recordName":"2/2/0123456789012345678901234567890123456789"}]})",
            {{"Content-Type", "application/json"}});
    EXPECT_EQ(reply.status, 200);
    const QJsonValue record = QJsonDocument::fromJson(reply.body)[u"records"][0];
    EXPECT_EQ(record[u"serverErrorCode"].toString(), u"NOT_FOUND"_s);
    EXPECT_EQ(record[u"reason"].toString(), u"Record not found"_s);
    EXPECT_EQ(ask("POST", lookup, "[]").status, 400);
}

/// All that is in the state folder, the service's own files and what is under way among it, and what
/// everybody may read of the service's process.
TEST_F(NotaryService, noSecretStandsWhereOthersCouldReadIt)
{
    const QString uuid = decidedRequest();
    ASSERT_EQ(setFaults(faultAt(putting, "s3-error", -1, "\"AccessDenied\"")), 200);
    const ToolResult refused = upload(makeArchive());
    ASSERT_EQ(setFaults(faultAt(completingParts, "s3-error", -1, "\"AccessDenied\"")), 200);
    const ToolResult leftInParts = upload(makeArchive(u"Large.zip"_s, (128LL << 20) + 1));
    EXPECT_EQ(leftInParts.status, 1);
    const ToolResult report = info(uuid);
    const auto keyLines = linesOfPrivateKey();
    ASSERT_GE(keyLines.size(), 2);
    const QRegularExpression secret(
        u"eyJ[A-Za-z0-9_-]{10}|Bearer |ASIA[A-Z2-7]{16}|Signature=|PRIVATE KEY|uploadId=|Credential=|"_s
        + keyLines.join(u'|'));
    for (const QString &text :
         {refused.output, refused.error, leftInParts.output, leftInParts.error, report.output, report.error,
          QString::fromUtf8(ask("GET", u"/control/requests"_s).body), saidByService()})
        EXPECT_FALSE(secret.match(text).hasMatch()) << text.toStdString();
    QDirIterator files(statePath(u"."_s), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                       QDirIterator::Subdirectories);
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    while (files.hasNext()) {
        const QString file = files.next();
        EXPECT_FALSE(QFileInfo(file).permissions() & others) << file.toStdString();
        const bool isText = QFileInfo(file).isFile() && QFileInfo(file).size() < 10 << 20;
        const QByteArray bytes = isText ? readFile(file) : QByteArray();
        EXPECT_FALSE(secret.match(QString::fromLatin1(bytes)).hasMatch()) << file.toStdString();
    }
}

TEST_F(NotaryService, independentPartnersAgreeWithBothSides)
{
    const QString script = QStringLiteral(PARTNERS_SCRIPT);
    const ToolResult keyItem = run(security, {u"find-generic-password"_s, u"-s"_s, u"item"_s, u"-w"_s});
    ASSERT_EQ(keyItem.status, 0) << keyItem.error.toStdString();
    const ToolResult result =
        run(u"/usr/bin/python3"_s, {script, statePath(u"notary/service.json"_s)}, keyItem.output.toUtf8());
    EXPECT_EQ(result.status, 0) << result.output.toStdString() << result.error.toStdString();
    EXPECT_TRUE(result.output.contains(u"all agreed"_s)) << result.output.toStdString();
}

TEST_F(NotaryService, othersRecomputeTheSignaturesAndTokensOfTheClient)
{
    const ToolResult keyItem = run(security, {u"find-generic-password"_s, u"-s"_s, u"item"_s, u"-w"_s});
    const QString big = makeArchive(u"Big.zip"_s, (128LL << 20) + 1);
    const ToolResult result =
        run(u"/usr/bin/python3"_s, {QStringLiteral(RECOMPUTE_SCRIPT), toolRoot() + xcrun, makeArchive(), big},
            keyItem.output.toUtf8());
    EXPECT_EQ(result.status, 0) << result.output.toStdString() << result.error.toStdString();
    EXPECT_TRUE(result.output.contains(u"8 signatures and 2 tokens agreed"_s)) << result.output.toStdString();
}
