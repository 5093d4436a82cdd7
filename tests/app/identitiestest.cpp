// The signing identities that launch reads from the keychain.

#include "app/discovery.h"
#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QStringList placeholder{u"No Developer ID identities found"_s};

struct ListingRow {
    const char *name;
    QString listing;
    QStringList applications;
    QStringList installers;
};

class IdentityListing : public testing::TestWithParam<ListingRow> { };

class Identities : public testing::Test {
protected:
    void launchWith(const ToolAnswer &security)
    {
        host.tools.answer(u"security"_s, security);
        host.launch();
    }

    TestHost host;
};

} // namespace

TEST_P(IdentityListing, givesTheNamesInItsOrder)
{
    const auto found = discovery::identitiesInListing(GetParam().listing);
    EXPECT_EQ(found.applications, GetParam().applications);
    EXPECT_EQ(found.installers, GetParam().installers);
}

INSTANTIATE_TEST_SUITE_P(
    Listings, IdentityListing,
    testing::Values(
        ListingRow{
            "one",
            u"  1) 01 \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n     1 valid identities found\n"_s,
            {u"Example Corp (A1B2C3D4E5)"_s},
            {}},
        ListingRow{
            "theSameInTwoKeychains",
            u"1) 01 \"Developer ID Application: Example Corp (A1)\"\n2) 01 \"Developer ID Application: Example Corp (A1)\"\n3) 02 \"Developer ID Installer: Example Corp (A1)\"\n4) 02 \"Developer ID Installer: Example Corp (A1)\"\n"_s,
            {u"Example Corp (A1)"_s},
            {u"Example Corp (A1)"_s}},
        ListingRow{"onlyAnInstaller",
                   u"1) 01 \"Developer ID Installer: Example Corp (A1)\"\n"_s,
                   placeholder,
                   {u"Example Corp (A1)"_s}},
        ListingRow{
            "anotherKind",
            u"1) 01 \"Apple Development: Jane Doe (A1)\"\n2) 02 \"Developer ID Application: Example Corp (A1)\"\n3) 03 \"3rd Party Mac Developer Installer: Example Corp (A1)\"\n"_s,
            {u"Example Corp (A1)"_s},
            {}},
        ListingRow{
            "twoUnsorted",
            u"1) 01 \"Developer ID Application: Zebra (Z1)\"\n\n2) 02 \"Developer ID Application: Apple Tree (A1)\"\n"_s,
            {u"Zebra (Z1)"_s, u"Apple Tree (A1)"_s},
            {}},
        ListingRow{"bothPrefixesInOneLine",
                   u"\"Developer ID Installer: \" \"Developer ID Application: Example Corp (A1)\"\n"_s,
                   {u"Example Corp (A1)"_s},
                   {}},
        ListingRow{"withoutALineEnd",
                   u"1) 01 \"Developer ID Application: Example Corp (A1)\""_s,
                   {u"Example Corp (A1)"_s},
                   {}},
        ListingRow{"textBehindTheQuote",
                   u"1) 01 \"Developer ID Application: Example Corp (A1)\" (CSSMERR_TP_CERT_EXPIRED)\n"_s,
                   {u"Example Corp (A1)"_s},
                   {}},
        ListingRow{
            "anotherCase", u"1) 01 \"developer id application: Example Corp (A1)\"\n"_s, placeholder, {}},
        ListingRow{"noneFound", u"     0 valid identities found\n"_s, placeholder, {}},
        ListingRow{"empty", u""_s, placeholder, {}}, ListingRow{"missing", {}, placeholder, {}}),
    [](const auto &row) { return row.param.name; });

TEST_F(Identities, fillThePopupInTheToolsOrderWithTheFirstSelected)
{
    launchWith({.output = "1) 01 \"Developer ID Application: Zebra (Z1)\"\n"
                          "2) 02 \"Developer ID Application: Apple Tree (A1)\"\n"});
    EXPECT_EQ(host.document().identitiesPopup.itemTitles(),
              (QStringList{u"Zebra (Z1)"_s, u"Apple Tree (A1)"_s}));
    EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), u"Zebra (Z1)"_s);
}

TEST_F(Identities, areOnlyThePlaceholderWhenTheToolPrintsNothing)
{
    launchWith({.status = 1, .error = "\"Developer ID Application: Example Corp (A1)\"\n"});
    EXPECT_EQ(host.application().identities(), placeholder);
    EXPECT_TRUE(host.application().installerIdentities().isEmpty());
    EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), placeholder.first());
    EXPECT_TRUE(host.applicationHost.modalAlerts.isEmpty());
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_F(Identities, areReadFromAToolThatFailsAfterwards)
{
    launchWith({.status = 1, .output = "1) 01 \"Developer ID Application: Example Corp (A1)\"\n"});
    EXPECT_EQ(host.application().identities(), QStringList{u"Example Corp (A1)"_s});
}

TEST_F(Identities, areOnlyThePlaceholderWithoutTheTool)
{
    host.tools.remove(u"/usr/bin/security"_s);
    host.launch();
    EXPECT_EQ(host.application().identities(), placeholder);
}

TEST_F(Identities, areOnlyThePlaceholderWhenTheListingIsNoUtf8)
{
    launchWith({.output = "1) 01 \"Developer ID Application: Caf\xe9 (A1)\"\n"});
    EXPECT_EQ(host.application().identities(), placeholder);
}

TEST_F(Identities, mayHaveAnyLetters)
{
    launchWith({.output = "1) 01 \"Developer ID Application: Caf\xc3\xa9 \xe5\xa4\xa7 (A1)\"\n"});
    EXPECT_EQ(host.application().identities(), QStringList{u"Café 大 (A1)"_s});
}

TEST_F(Identities, doNotChangeAfterLaunch)
{
    host.launch();
    host.tools.answer(u"security"_s, {.output = "\"Developer ID Application: Later (L1)\"\n"});
    EXPECT_EQ(host.application().addedDocument()->identitiesPopup.itemTitles(),
              QStringList{u"Example Corp (A1B2C3D4E5)"_s});
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(Identities, aChoiceInADocumentStoresNothing)
{
    launchWith({.output = "1) 01 \"Developer ID Application: Zebra (Z1)\"\n"
                          "2) 02 \"Developer ID Application: Apple Tree (A1)\"\n"});
    host.document().identitiesPopup.selectItemWithTitle(u"Apple Tree (A1)"_s);
    EXPECT_FALSE(host.preferences.stored().contains(key::lastUsedIdentity));
}

TEST_F(Identities, thePlaceholderRefusesASubmission)
{
    launchWith({});
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"No Identities Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"No Developer ID codesigning identities have been found."_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}
