// The commands besides submitting, over a real bus.

#include "dbus/hostonbus.h"
#include "support/items.h"

#include <limits>

using namespace Qt::StringLiterals;

class OtherCommands : public HostOnBus, public testing::WithParamInterface<const char *> {
protected:
    /// Sends the command to the receiver and waits for its answer.
    QDBusMessage send(const QString &command, const QVariantMap &arguments)
    {
        const bool isToApplication = QByteArray(GetParam()) == "application";
        return client.call(isToApplication ? bus::applicationPath : documentPath(),
                           isToApplication ? bus::applicationInterface : bus::documentInterface, command,
                           {arguments});
    }
};

INSTANTIATE_TEST_SUITE_P(Of, OtherCommands, testing::Values("application", "document"));

TEST_P(OtherCommands, signingAnswersWithTheSignedCopy)
{
    EXPECT_EQ(variantOf(send(u"SignOnly"_s, {{u"at"_s, appURL()}})),
              QVariant(url(u"Foo - Signed/Foo.app"_s)));
}

TEST_P(OtherCommands, staplingAnswersWithTheItem)
{
    host.tools.answer(u"spctl"_s, {.error = "Foo.app: accepted\n"});
    const QString item = appURL();
    EXPECT_EQ(variantOf(send(u"StapleOnly"_s, {{u"at"_s, item}})), QVariant(item));
}

TEST_P(OtherCommands, theHistoryIsAnsweredAsText)
{
    host.tools.answer(u"altool--notarization-history"_s, {.output = "a page\n"});
    for (const QVariant &page : {QVariant(3), QVariant(3U), QVariant(3LL), QVariant(3ULL)})
        EXPECT_EQ(variantOf(send(u"FetchHistory"_s, {{u"pageToFetch"_s, page}})), QVariant(u"a page\n"_s));
    const auto calls = host.tools.callsOf(u"altool--notarization-history"_s);
    ASSERT_EQ(calls.size(), 4);
    for (const QStringList &arguments : calls)
        EXPECT_EQ(arguments.value(2), u"3"_s);
}

TEST_P(OtherCommands, preparingEndsAtOnceWithoutAResult)
{
    EXPECT_TRUE(isNoValue(variantOf(
        send(u"PrepareForNotarizing"_s, {{u"at"_s, appURL()}, {u"signingIdentity"_s, u"Nobody"_s}}))));
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
}

TEST_P(OtherCommands, anArgumentOfTheWrongTypeIsRefusedBeforeAnythingHappens)
{
    const QString item = appURL();
    EXPECT_EQ(errorOf(send(u"FetchHistory"_s, {{u"pageToFetch"_s, u"3"_s}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(errorOf(send(u"FetchHistory"_s, {{u"pageToFetch"_s, std::numeric_limits<qulonglong>::max()}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(errorOf(send(u"FetchHistory"_s, {{u"pageToFetch"_s, -1}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(errorOf(send(u"FetchHistory"_s, {{u"xmlOutput"_s, 1}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(errorOf(send(u"SignOnly"_s, {{u"at"_s, item}, {u"showingDialogs"_s, u"yes"_s}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(errorOf(send(u"PrepareForNotarizing"_s, {{u"at"_s, item}, {u"signingIdentity"_s, 1}})),
              u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(HostOnBus, clearingTheLogOfABusyDocumentIsAnsweredWithNoValue)
{
    host.document().logString(u"a line"_s);
    host.settle();
    host.document().changeStatus(status::waiting);
    EXPECT_TRUE(isNoValue(
        variantOf(client.call(documentPath(), bus::documentInterface, u"ClearLog"_s, {QVariantMap()}))));
    EXPECT_TRUE(host.log().isEmpty());
}
