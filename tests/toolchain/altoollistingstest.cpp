// The history of an account, and its providers.

#include "toolchain/altooltest.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int linesOfTableHead = 4;

} // namespace

TEST_F(Altool, aHistoryWithoutRequestsSaysSo)
{
    const ToolResult reply = altool({u"--notarization-history"_s, u"0"_s});
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.output, u"No items found.\n"_s);
}

TEST_F(Altool, aHistoryHasALineForEachRequest)
{
    makeSignedArchive();
    const QString first = uuidIn(upload(archive()));
    const QString second = uuidIn(upload(archive()));
    const QString history = altool({u"--notarization-history"_s, u"0"_s}).output;
    EXPECT_TRUE(history.startsWith(u"Notarization History - page 0\n\nDate "_s)) << history.toStdString();
    EXPECT_EQ(history.count(u'\n'), linesOfTableHead + 2);
    EXPECT_TRUE(history.contains(first + u" in progress"_s));
    EXPECT_TRUE(history.contains(second));
    EXPECT_EQ(altool({u"--notarization-history"_s, u"1"_s}).output, u"No items found.\n"_s);
}

TEST_F(Altool, aHistoryMayBeAPropertyList)
{
    makeSignedArchive();
    const QString uuid = uuidIn(upload(archive()));
    const ToolResult reply = altool({u"--notarization-history"_s, u"0"_s, u"--output-format"_s, u"xml"_s});
    const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
    const QVariantList items = list.value(u"notarization-history"_s).toMap().value(u"items"_s).toList();
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items.first().toMap().value(u"RequestUUID"_s).toString(), uuid);
}

TEST_F(Altool, aHistoryBeginsWithTheNewestRequest)
{
    for (const int number : {1, 3, 2})
        storeRequest(number);
    const QStringList lines = altool({u"--notarization-history"_s, u"0"_s}).output.split(u'\n');
    ASSERT_EQ(lines.size(), linesOfTableHead + 4);
    for (qsizetype index = 0; index < 3; ++index)
        EXPECT_TRUE(lines.at(linesOfTableHead + index).contains(uuidOf(3 - int(index))))
            << lines.join(u'\n').toStdString();
}

TEST_F(Altool, aHistoryIsWholeOnItsFirstPageAndNamesNoNextOne)
{
    for (int number = 1; number <= 41; ++number)
        storeRequest(number);
    const QString text = altool({u"--notarization-history"_s, u"0"_s}).output;
    EXPECT_EQ(text.count(u'\n'), linesOfTableHead + 41);
    EXPECT_FALSE(text.contains(u"Next page value"_s));
    EXPECT_EQ(historyEntries(u"0"_s).value(u"items"_s).toList().size(), 41);
    EXPECT_FALSE(historyEntries(u"0"_s).contains(u"next-page"_s));
    EXPECT_EQ(historyEntries(u"0"_s).value(u"last-page"_s, -1).toInt(), 0);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"1"_s}).output, u"No items found.\n"_s);
    const QVariantMap beyond = historyEntries(u"1"_s);
    EXPECT_TRUE(beyond.contains(u"items"_s));
    EXPECT_TRUE(beyond.value(u"items"_s).toList().isEmpty());
}

TEST_F(Altool, aHistoryHasTheHundredNewestRequests)
{
    for (int number = 1; number <= 103; ++number)
        storeRequest(number);
    const QVariantList items = historyEntries(u"0"_s).value(u"items"_s).toList();
    ASSERT_EQ(items.size(), 100);
    EXPECT_EQ(items.first().toMap().value(u"RequestUUID"_s).toString(), uuidOf(103));
    EXPECT_EQ(items.last().toMap().value(u"RequestUUID"_s).toString(), uuidOf(4));
}

TEST_F(Altool, theOneProviderIsTheTeamOfTheKey)
{
    ASSERT_EQ(run(keychain, {u"make-api-key"_s, u"item"_s, u"--team"_s, u"A1B2C3D4E5"_s}).status, 0);
    const QVariantList providers = providerEntries();
    ASSERT_EQ(providers.size(), 1);
    EXPECT_EQ(providers.first().toMap().value(u"ProviderShortname"_s).toString(), u"A1B2C3D4E5"_s);
    EXPECT_EQ(providers.first().toMap().value(u"WWDRTeamID"_s).toString(), u"A1B2C3D4E5"_s);
    EXPECT_TRUE(
        providers.first().toMap().value(u"ProviderName"_s).toString().startsWith(u"Team of API key "_s));
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s, u"--asc-provider"_s, u"A1B2C3D4E5"_s}).status, 0);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s, u"--asc-provider"_s, u"OTHERTEAM1"_s}).status, 1);
}

TEST_F(Altool, theProvidersAreNotListedWithoutAPassword)
{
    const ToolResult reply =
        run(xcrun, {u"altool"_s, u"--list-providers"_s, u"-u"_s, u"me"_s, u"-p"_s, u"@keychain:none"_s});
    EXPECT_EQ(reply.status, 1);
    EXPECT_EQ(reply.output, QString());
    EXPECT_TRUE(reply.error.contains(u"The specified item could not be found in the keychain"_s));
}
