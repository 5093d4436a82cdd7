// What the programs of the keychain are given, and how they are run.

#include "app/keychaintools.h"
#include "support/testhost.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString program = u"/usr/bin/sealwright-keychain"_s;

class Keychain : public testing::Test {
protected:
    Keychain()
    {
        host.tools.add(program);
        host.tools.answer(u"sealwright-keychain"_s, {.output = "done\n"});
    }

    /// Its answer, once it is there.
    KeychainTools::Answer answerOf(const QList<keychain::Command> &commands)
    {
        std::optional<KeychainTools::Answer> answer;
        tools.runAll(commands, context, [&answer](const KeychainTools::Answer &given) { answer = given; });
        host.runUntil([&answer] { return answer.has_value(); });
        return *answer;
    }

    TestHost host;
    KeychainTools tools{host.host(), program};
    QObject context;
};

} // namespace

TEST(KeychainCommands, haveNoSecretAmongTheirArguments)
{
    const QString secret = u"s3cret"_s;
    for (const keychain::Command &command :
         {keychain::importFile(u"/keys/id.p12"_s, secret), keychain::unlock(secret),
          keychain::setPassphrase(secret), keychain::addPassword(u"item"_s, u"me@example.com"_s, secret)}) {
        EXPECT_FALSE(command.arguments.join(u' ').contains(secret));
        EXPECT_EQ(command.input, "s3cret\n");
    }
}

TEST(KeychainCommands, nameOnlyWhatIsKnownOfAKey)
{
    EXPECT_EQ(keychain::addApiKey({u"notary"_s, u"/keys/AuthKey_A1.p8"_s, {}, {}}).arguments,
              (QStringList{u"add-api-key"_s, u"notary"_s, u"/keys/AuthKey_A1.p8"_s}));
    EXPECT_EQ(keychain::addApiKey({u"notary"_s, u"/keys/key.p8"_s, u"A1"_s, u"5a-1"_s}).arguments,
              (QStringList{u"add-api-key"_s, u"notary"_s, u"--key-id"_s, u"A1"_s, u"--issuer"_s, u"5a-1"_s,
                           u"/keys/key.p8"_s}));
}

TEST(KeychainCommands, readFromAStatusWhatProtectsTheKeysAndWhetherTheyAreLocked)
{
    using keychain::Protection;
    using keychain::State;
    EXPECT_EQ(keychain::stateIn(u"store: file, under a random key that lies beside it\nstate: unlocked\n"_s),
              (State{Protection::folderAlone, false}));
    EXPECT_EQ(keychain::stateIn(u"store: file, under a passphrase\nstate: locked\n"_s),
              (State{Protection::passphrase, true}));
    EXPECT_EQ(keychain::stateIn(u"store: secret-service\nstate: unlocked\n"_s),
              (State{Protection::secretService, false}));
    EXPECT_EQ(keychain::stateIn(u"state: locked\n"_s), std::nullopt);
    EXPECT_EQ(keychain::useStore(Protection::secretService).arguments,
              (QStringList{u"use-store"_s, u"secret-service"_s}));
}

TEST(KeychainCommands, readTheLinesOfAListing)
{
    const QList<keychain::Identity> found = keychain::identitiesIn(
        u"  1) 0A1B \"Developer ID Application: Example \"A\" (A1B2C3D4E5)\"\n  2) 0C \"Mac\"\n     2 valid identities found\n"_s);
    EXPECT_EQ(
        found,
        (QList<keychain::Identity>{{u"0A1B"_s, u"Developer ID Application: Example \"A\" (A1B2C3D4E5)"_s},
                                   {u"0C"_s, u"Mac"_s}}));
}

TEST(KeychainCommands, giveANameATeamThatItKeeps)
{
    const QString name = keychain::withTeam(u"  Example   Corp "_s);
    EXPECT_TRUE(QRegularExpression(u"^Example Corp \\([A-Z0-9]{10}\\)$"_s).match(name).hasMatch())
        << name.toStdString();
    EXPECT_EQ(keychain::withTeam(u"Example Corp"_s), name);
    EXPECT_EQ(keychain::withTeam(name), name);
    EXPECT_NE(keychain::withTeam(u"Example Corp 2"_s), name);
}

TEST(KeychainCommands, tellAReasonWithoutTheNameOfTheProgram)
{
    EXPECT_EQ(keychain::reasonIn(u"security: id.p12: the passphrase is wrong\n"_s),
              u"id.p12: the passphrase is wrong"_s);
    EXPECT_EQ(keychain::reasonIn(u"sealwright-keychain: no\nUsage: sealwright-keychain\n  more\n"_s),
              u"no"_s);
}

TEST_F(Keychain, handsASecretToTheProgramAsItsInput)
{
    host.tools.answer(u"security"_s, {.readsInput = true});
    EXPECT_TRUE(answerOf({keychain::addPassword(u"item"_s, {}, u"abcd-efgh"_s)}));
    EXPECT_EQ(host.tools.inputOf(u"security"_s), "abcd-efgh\n");
    EXPECT_EQ(host.tools.callsOf(u"security"_s).last(),
              (QStringList{u"add-generic-password"_s, u"-s"_s, u"item"_s, u"-U"_s}));
}

TEST_F(Keychain, answersWithWhatTheProgramPrintedOrWithTheReason)
{
    EXPECT_EQ(answerOf({keychain::status()}).valueOr({}), u"done\n"_s);
    host.tools.answer(u"sealwright-keychain"_s,
                      {.status = 1, .error = "sealwright-keychain: vault.json: is damaged\n"});
    const auto answer = answerOf({keychain::status()});
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error(), u"vault.json: is damaged"_s);
}

TEST_F(Keychain, stopsAtTheFirstThatFails)
{
    host.tools.answerRun(u"sealwright-keychain"_s, 2, {.status = 1, .error = "no\n"});
    EXPECT_FALSE(answerOf({keychain::makeApiKey(u"a"_s), keychain::makeApiKey(u"b"_s), keychain::lock()}));
    EXPECT_EQ(host.tools.callsOf(u"sealwright-keychain"_s).size(), 2);
}

TEST_F(Keychain, tellsNobodyWhoHasGone)
{
    auto gone = std::make_unique<QObject>();
    bool wasTold = false;
    tools.run(keychain::status(), *gone, [&wasTold](const auto &) { wasTold = true; });
    gone.reset();
    host.settle();
    EXPECT_FALSE(wasTold);
}

TEST_F(Keychain, isThereOnlyWithItsProgram)
{
    EXPECT_TRUE(tools.isThere());
    EXPECT_FALSE(KeychainTools(host.host(), {}).isThere());
}
