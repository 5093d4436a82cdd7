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
        return client.end(begin(command, arguments));
    }
    QDBusPendingCall begin(const QString &command, const QVariantMap &arguments)
    {
        const bool isToApplication = QByteArray(GetParam()) == "application";
        return client.begin(isToApplication ? bus::applicationPath : documentPath(),
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

TEST_P(OtherCommands, theHistoryWithoutAPageIsThatOfTheFirstAndAScriptsOwn)
{
    host.tools.answer(u"altool--notarization-history"_s, {.output = "a page\n"});
    EXPECT_EQ(variantOf(send(u"FetchHistory"_s, {})), QVariant(u"a page\n"_s));
    const auto calls = host.tools.callsOf(u"altool--notarization-history"_s);
    ASSERT_EQ(calls.size(), 1); // a person's goes on to further pages
    EXPECT_EQ(calls.first().value(2), u"0"_s);
}

TEST_P(OtherCommands, theHistoryShowsNoDialogsWhateverIsAskedFor)
{
    host.tools.answer(u"altool--notarization-history"_s, {.status = 1, .error = "no such account"});
    const QDBusMessage answer = send(u"FetchHistory"_s, {{u"showingDialogs"_s, true}});
    EXPECT_TRUE(failureOf(answer).startsWith(u"N1120 Cannot Fetch History: "_s))
        << failureOf(answer).toStdString();
    host.settle();
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_P(OtherCommands, theHistoryIsNeverAnsweredIfAPageNamesTheOneBehindIt)
{
    host.tools.answer(u"altool--notarization-history"_s,
                      {.output = "<plist version=\"1.0\"><dict><key>notarization-history</key><dict>"
                                 "<key>next-page</key><integer>3</integer></dict></dict></plist>"});
    const QDBusPendingCall call = begin(u"FetchHistory"_s, {{u"pageToFetch"_s, 2}, {u"xmlOutput"_s, true}});
    host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    host.settle();
    EXPECT_EQ(ofDocument(u"DocStatus"_s), QVariant(u"ready"_s)); // an answer would have come before this one
    EXPECT_FALSE(call.isFinished());
}

TEST_P(OtherCommands, aPreparedDocumentRefusesFurtherCommands)
{
    send(u"PrepareForNotarizing"_s, {{u"at"_s, appURL()}});
    for (const QString &command :
         {u"SubmitForNotarizing"_s, u"StapleOnly"_s, u"SignOnly"_s, u"PrepareForNotarizing"_s}) {
        const QDBusMessage answer =
            client.call(documentPath(), bus::documentInterface, command, {QVariantMap{{u"at"_s, appURL()}}});
        EXPECT_EQ(failureOf(answer), u"N1199 Document is busy, status: interacting."_s);
    }
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_P(OtherCommands, anIdentityIsSelectedByItsNameWithThePrefixOrWithout)
{
    const QStringList identities{u"Jane (AAAA)"_s, u"Joe (BBBB)"_s};
    host.application().identities.set(identities);
    const std::pair<QString, QString> selections[] = {
        {u"Developer ID Application: Joe (BBBB)"_s, u"Joe (BBBB)"_s},
        {u"Joe (BBBB)"_s, u"Joe (BBBB)"_s},
        {u"Nobody"_s, u"Jane (AAAA)"_s},
        {u"Developer ID Application: "_s, u"Jane (AAAA)"_s},
    };
    for (const auto &[given, selected] : selections) {
        host.application().newDocument(0);
        EXPECT_EQ(
            failureOf(send(u"PrepareForNotarizing"_s, {{u"at"_s, appURL()}, {u"signingIdentity"_s, given}})),
            u"no error"_s);
        EXPECT_EQ(ofDocument(u"ActiveIdentity"_s), QVariant(selected)) << given.toStdString();
    }
}

TEST_P(OtherCommands, aPlainFolderIsSignedAndAFileIsNot)
{
    items::makeBundle(host.item(u"Folder/Foo.app"_s));
    EXPECT_EQ(failureOf(send(u"SignOnly"_s, {{u"at"_s, url(u"Folder"_s)}})), u"no error"_s);
    host.settle();
    const qsizetype documents = host.application().allControllers().size();
    for (const QString &name : {u"Foo.pkg"_s, u"Foo.dmg"_s}) {
        items::makeFile(host.item(name), "file");
        EXPECT_EQ(failureOf(send(u"SignOnly"_s, {{u"at"_s, url(name)}})), u"N6 "_s);
    }
    EXPECT_EQ(host.application().allControllers().size(), documents);
}

TEST_P(OtherCommands, aBusyReceiverIsToldOfTheArgumentFirst)
{
    const QString item = appURL();
    host.application().changeStatus(status::interacting);
    host.document().changeStatus(status::interacting);
    for (const QString &command :
         {u"SubmitForNotarizing"_s, u"StapleOnly"_s, u"SignOnly"_s, u"PrepareForNotarizing"_s}) {
        EXPECT_EQ(failureOf(send(command, {})), u"N6 "_s);
        EXPECT_TRUE(failureOf(send(command, {{u"at"_s, item}})).startsWith(u"N1199 "_s));
    }
    EXPECT_TRUE(failureOf(send(u"FetchHistory"_s, {})).startsWith(u"N1199 "_s));
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.application().allControllers().size(), 1);
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
