// What is read of the reply that names the teams of the account.

#include "notarization/providersreply.h"

using namespace Qt::StringLiterals;

struct TagRow {
    const char *situation;
    const char *error;
    const char *kept;
};

class ErrorTag : public testing::TestWithParam<TagRow> { };

TEST_P(ErrorTag, isCutOff)
{
    const QString kept = withoutTag(QString::fromUtf8(GetParam().error));
    EXPECT_EQ(kept, QString::fromUtf8(GetParam().kept));
    EXPECT_EQ(kept.isNull(), GetParam().kept == nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ErrorTag,
    testing::Values(TagRow{"inFront", "2026 altool[17:5] *** Error: no.\n", "*** Error: no."},
                    TagRow{"theFirstOfTwo", "[a] b [c] d", "b [c] d"}, TagRow{"nothingBehind", "[a]", ""},
                    TagRow{"openAlone", " [a b\n", " [a b\n"}, TagRow{"none", " whole \n", " whole \n"},
                    TagRow{"nothing", nullptr, nullptr}),
    [](const auto &row) { return row.param.situation; });

struct UnusableRow {
    const char *situation;
    SLWTaskResponsePtr response;
    QString heading;
    QString detail;
};

class UnusableReply : public testing::TestWithParam<UnusableRow> { };

TEST_P(UnusableReply, isAMessage)
{
    const auto reply = readProviders(*GetParam().response);
    ASSERT_TRUE(std::holds_alternative<ProviderMessage>(reply));
    EXPECT_EQ(std::get<ProviderMessage>(reply).heading, GetParam().heading);
    EXPECT_EQ(std::get<ProviderMessage>(reply).detail, GetParam().detail);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnusableReply,
    testing::Values(
        UnusableRow{
            "ofAFailure", response(1, twoTeams, "altool[1] *** Error: no.\n"),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: *** Error: no.\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{
            "ofAFailureWithoutText", response(1, "said on the other stream"),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: (null)\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{
            "ofAToolThatDidNotStart",
            [] {
                const auto skipped = SLWTaskResponse::responseWithPath(u"/usr/bin/xcrun"_s, {});
                skipped->status.set(statusSkipped);
                return skipped;
            }(),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: (null)\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{"withoutProviders", response(0, list("<key>teams</key><array/>")), problem,
                    u"No providers were found in the data returned."_s},
        UnusableRow{"withAText", response(0, list("<key>providers</key><string>none</string>")), problem,
                    u"No providers were found in the data returned."_s},
        UnusableRow{"thatIsAnArray", response(0, "<plist version=\"1.0\"><array/></plist>"), problem,
                    u"No providers were found in the data returned."_s}),
    [](const auto &row) { return row.param.situation; });

TEST(ProvidersReply, thatIsNoPropertyListShowsTheReadersError)
{
    for (const QByteArray &data : {twoTeams.chopped(30), QByteArray()}) {
        const auto reply = readProviders(*response(0, data));
        ASSERT_TRUE(std::holds_alternative<ProviderMessage>(reply));
        const ProviderMessage message = std::get<ProviderMessage>(reply);
        EXPECT_EQ(message.heading, problem);
        EXPECT_TRUE(message.detail.startsWith(u"Error returned: "_s));
        EXPECT_GT(message.detail.size(), u"Error returned: "_s.size());
    }
}

TEST(ProvidersReply, namesTheTeamsInItsOrder)
{
    const auto reply = readProviders(*response(0, twoTeams, "a warning"));
    ASSERT_TRUE(std::holds_alternative<Providers>(reply));
    const Providers teams = std::get<Providers>(reply);
    ASSERT_EQ(teams.size(), 2);
    EXPECT_EQ(teams.at(0).title, u"Zebra (Name: Zebra Corp, Team ID: Z1)"_s);
    EXPECT_EQ(teams.at(0).representedObject, u"Zebra"_s);
    EXPECT_EQ(teams.at(1).title, u"Ant (Name: Ant & Co %1, Team ID: A1)"_s);
    EXPECT_EQ(teams.at(1).representedObject, u"Ant"_s);
}

TEST(ProvidersReply, showsWhatATeamLacks)
{
    const auto reply = readProviders(*response(0, providers("<dict/>" + team("a", "b", "c"))));
    EXPECT_EQ(std::get<Providers>(reply).at(0).title, u"(null) (Name: (null), Team ID: (null))"_s);
    EXPECT_EQ(std::get<Providers>(reply).at(0).representedObject, QString());
}
