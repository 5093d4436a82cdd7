#include "formats/codesignature/cms.h"
#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/timestampclient.h"
#include "formats/codesignature/timestamptoken.h"
#include "formats/statefolder.h"
#include "formats/timestampauthority.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/httpanswers.h"
#include "toolchain/keychainfixture.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

class Timestamps : public KeychainFixture {
protected:
    void SetUp() override
    {
        KeychainFixture::SetUp();
        auto opened = TimestampAuthority::open(keychainFolder());
        ASSERT_TRUE(opened) << opened.error().toStdString();
        m_authority = *opened;
    }

    void TearDown() override
    {
        qunsetenv("SEALWRIGHT_WAIT_SCALE");
        KeychainFixture::TearDown();
    }

    [[nodiscard]] QByteArray answer(const QByteArray &query, std::chrono::seconds ahead = {}) const
    {
        return m_authority->answer(query, ahead);
    }

    static TimestampQuery query(const QByteArray &stamped, const QString &policy = {})
    {
        return timestampQueryFor(stamped, QCryptographicHash::Sha256, policy);
    }

    static platform::Result<QByteArray> ask(const HttpAnswers &server)
    {
        return timestampClient({server.url(), {}})("a signature");
    }

    std::optional<TimestampAuthority> m_authority;
};

} // namespace

TEST_F(Timestamps, areGivenAndAcceptedOnThisMachine)
{
    const TimestampQuery question = query("a signature", u"1.2.3.4.5.6"_s);
    const auto token =
        tokenInReply(answer(question.der), "a signature", question.nonce, TrustStore::ofThisMachine());
    ASSERT_TRUE(token) << token.error().toStdString();
    const auto stamp = checkTimestamp(*token, "a signature", TrustStore::ofThisMachine());
    ASSERT_TRUE(stamp) << stamp.error().toStdString();
    EXPECT_EQ(stamp->anchor, Anchor::thisMachine);
    EXPECT_LT(std::abs(stamp->time.secsTo(QDateTime::currentDateTimeUtc())), 60);
}

TEST_F(Timestamps, opensslVerifiesThem)
{
    const TimestampQuery question = query("a signature");
    bundlebuilder::writeFile(path(u"query"_s), question.der);
    bundlebuilder::writeFile(path(u"reply"_s), answer(question.der));
    const ToolResult result =
        run(u"openssl"_s,
            {u"ts"_s, u"-verify"_s, u"-queryfile"_s, path(u"query"_s), u"-in"_s, path(u"reply"_s),
             u"-CAfile"_s, statePath(u"keychain/authority/root.pem"_s)});
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
}

TEST_F(Timestamps, theClockCanBePutForward)
{
    const TimestampQuery question = query("a signature");
    const auto token = tokenInReply(answer(question.der, std::chrono::hours(24)), "a signature",
                                    question.nonce, TrustStore::ofThisMachine());
    ASSERT_TRUE(token) << token.error().toStdString();
    const auto stamp = checkTimestamp(*token, "a signature", TrustStore::ofThisMachine());
    EXPECT_GT(QDateTime::currentDateTimeUtc().secsTo(stamp->time), 80'000);
}

TEST_F(Timestamps, ofSomethingElseAreRefused)
{
    const TimestampQuery question = query("another signature");
    const auto token =
        tokenInReply(answer(question.der), "a signature", question.nonce, TrustStore::ofThisMachine());
    EXPECT_EQ(token.error(), u"the time stamp is of something else"_s);
}

TEST_F(Timestamps, thatAnswerAnotherQuestionAreRefused)
{
    const TimestampQuery first = query("a signature");
    const TimestampQuery second = query("a signature");
    const auto token =
        tokenInReply(answer(first.der), "a signature", second.nonce, TrustStore::ofThisMachine());
    EXPECT_EQ(token.error(), u"the time stamp answers another question"_s);
}

TEST_F(Timestamps, ofAnUnknownAuthorityAreRefused)
{
    const TimestampQuery question = query("a signature");
    const QByteArray reply = answer(question.der);
    QFile::remove(statePath(u"keychain/authority/root.pem"_s));
    const auto token = tokenInReply(reply, "a signature", question.nonce, TrustStore::ofThisMachine());
    EXPECT_TRUE(token.error().startsWith(u"the time stamp's signer is not accepted: "_s))
        << token.error().toStdString();
}

TEST_F(Timestamps, ofTheServicesOwnAuthorityAreAccepted)
{
    const TimestampQuery question = query("a signature");
    const QByteArray reply = answer(question.der);
    ASSERT_TRUE(QFile::rename(statePath(u"keychain/authority/root.pem"_s), path(u"ca.pem"_s)));
    qputenv("SEALWRIGHT_NOTARY_CA", path(u"ca.pem"_s).toUtf8());
    const auto token = tokenInReply(reply, "a signature", question.nonce, TrustStore::ofThisMachine());
    qunsetenv("SEALWRIGHT_NOTARY_CA");
    EXPECT_TRUE(token) << token.error().toStdString();
}

TEST_F(Timestamps, withAChangedByteAreRefused)
{
    const TimestampQuery question = query("a signature");
    const auto token =
        tokenInReply(answer(question.der), "a signature", question.nonce, TrustStore::ofThisMachine());
    ASSERT_TRUE(token);
    QByteArray changed = *token;
    changed[changed.size() - 20] = static_cast<char>(changed[changed.size() - 20] ^ 1);
    EXPECT_FALSE(checkTimestamp(changed, "a signature", TrustStore::ofThisMachine()));
}

TEST_F(Timestamps, theAuthorityRefusesWhatIsNoQuestion)
{
    const auto token = tokenInReply(answer("garbage"), "a signature", {}, TrustStore::ofThisMachine());
    EXPECT_TRUE(token.error().startsWith(u"no time stamp was granted"_s)) << token.error().toStdString();
}

TEST_F(Timestamps, comeOverHttp)
{
    const HttpAnswers server([this](const QByteArray &body) { return answer(body); });
    const auto token = ask(server);
    ASSERT_TRUE(token) << token.error().toStdString();
    EXPECT_TRUE(checkTimestamp(*token, "a signature", TrustStore::ofThisMachine()));
}

TEST_F(Timestamps, aServiceThatAnswersGarbageIsNamed)
{
    const HttpAnswers server([](const QByteArray &) { return QByteArray("garbage"); });
    EXPECT_EQ(ask(server).error(), server.url() + u": the answer is no time stamp"_s);
}

TEST_F(Timestamps, aServiceThatIsAwayIsNotAvailable)
{
    const QString error = timestampClient({u"http://127.0.0.1:1/"_s, {}})("a signature").error();
    EXPECT_TRUE(error.startsWith(u"The timestamp service is not available. (http://127.0.0.1:1/: "_s))
        << error.toStdString();
}

TEST_F(Timestamps, aServiceThatNeverAnswersIsGivenUp)
{
    qputenv("SEALWRIGHT_WAIT_SCALE", "0.01");
    const HttpAnswers server([](const QByteArray &) { return QByteArray(); }, HttpAnswers::Manner::silent);
    EXPECT_TRUE(ask(server).error().contains(u"The timestamp service is not available."_s));
}

TEST_F(Timestamps, anAnswerWithoutEndIsGivenUp)
{
    const HttpAnswers server([](const QByteArray &) { return QByteArray(1 << 20, 'x'); });
    EXPECT_TRUE(ask(server).error().contains(u"the answer is longer than any time stamp"_s));
}

TEST_F(Timestamps, anErrorOfTheServerIsTold)
{
    const HttpAnswers server([](const QByteArray &) { return QByteArray("busy"); },
                             HttpAnswers::Manner::refusing);
    EXPECT_TRUE(ask(server).error().contains(u"HTTP status 503"_s));
}

TEST_F(Timestamps, goIntoASignature)
{
    makeIdentity(IdentityKind::application);
    const HttpAnswers server([this](const QByteArray &body) { return answer(body); });
    const auto signer = findSigningIdentity(u"Example Corp"_s, IdentityKind::application);
    ASSERT_TRUE(signer);
    const QByteArray digest(32, 'd');
    const auto cms = makeCodeCms(*signer, {digest, {{2, digest}}, {}}, timestampClient({server.url(), {}}));
    ASSERT_TRUE(cms) << cms.error().toStdString();
    const auto signature = readCms(*cms);
    ASSERT_TRUE(signature) << signature.error().toStdString();
    const CmsJudgement judgement = judgeCms(*signature, {[&](auto) { return digest; }, {{2, digest}}},
                                            TrustPurpose::codeSigning, TrustStore::ofThisMachine());
    EXPECT_TRUE(judgement.isGood()) << judgement.timestampProblem.toStdString();
    EXPECT_TRUE(judgement.timestamp);
}
