// SubmitForNotarizing on the application and on a document.

#include "dbus/hostonbus.h"

#include "app/appdelegate.h"

#include <QDBusVariant>
#include <QFile>

using namespace Qt::StringLiterals;

class Commands : public HostOnBus {
protected:
    QDBusMessage submit(const QVariantMap &arguments, const QString &document = {})
    {
        return client.end(client.beginSubmit(arguments, document));
    }
    /// Lets the submission go on until it is answered.
    QDBusMessage endWithPolls(const QDBusPendingCall &call)
    {
        host.runUntil([&] {
            host.timers.fireNext();
            return call.isFinished();
        });
        return call.reply();
    }
    QString resultURL(const QString &name) const { return url(u"Foo - Notarized/"_s + name); }
    qsizetype documentCount() { return host.application().allControllers().size(); }
    /// The property's value, which is a variant itself unless there is none.
    QVariant lastErrorFrom(BusClient &asking)
    {
        return asking.get(bus::applicationPath, bus::applicationInterface, u"LastErrorFrom"_s);
    }
    QString lastErrorText(BusClient &asking)
    {
        return lastErrorFrom(asking).value<QDBusVariant>().variant().toString();
    }
    /// Has the signing fail with a log line of that length.
    void failSigningWith(const QByteArray &text)
    {
        host.tools.answer(u"codesign"_s, {.status = 1, .error = text});
    }
};

TEST_F(Commands, aSubmissionOfTheApplicationAnswersWithItsItemFromADocumentOfItsOwn)
{
    const QDBusPendingCall call = client.beginSubmit({{u"at"_s, appURL()}});
    const QVariant result = variantOf(endWithPolls(call));
    EXPECT_EQ(result, QVariant(resultURL(u"Foo.app"_s)));
    EXPECT_EQ(documentCount(), 2);
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"Caller"_s), QVariant(client.name()));
    EXPECT_FALSE(host.window().sheet);
}

TEST_F(Commands, aSubmissionOfADocumentHappensInIt)
{
    const QDBusPendingCall call = client.beginSubmit({{u"at"_s, appURL()}}, documentPath());
    EXPECT_EQ(variantOf(endWithPolls(call)), QVariant(resultURL(u"Foo.app"_s)));
    EXPECT_EQ(documentCount(), 1);
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"Caller"_s), QVariant(u""_s));
}

TEST_F(Commands, skippingTheStaplingEndsWithTheUpload)
{
    const QDBusMessage answer = submit({{u"at"_s, appURL()}, {u"skippingStapling"_s, true}}, documentPath());
    EXPECT_EQ(variantOf(answer), QVariant(url(u"Foo - Submitted/Foo.app"_s)));
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

TEST_F(Commands, dialogsAreLeftOutUnlessTheyAreAskedFor)
{
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    const QDBusPendingCall quiet = client.beginSubmit({{u"at"_s, appURL()}}, documentPath());
    waitForCredentialCheck();
    EXPECT_TRUE(host.document().suppressDialogs());
    cancel();
    client.end(quiet);
    EXPECT_FALSE(host.window().sheet);
    host.settle();
    host.document().cancelPressed.set(false);

    const QDBusPendingCall loud =
        client.beginSubmit({{u"at"_s, appURL()}, {u"showingDialogs"_s, true}}, documentPath());
    waitForCredentialCheck(2);
    EXPECT_FALSE(host.document().suppressDialogs());
    cancel();
    EXPECT_EQ(errorOf(client.end(loud)), u"org.sealwright.Error.N1118"_s); // with the sheet still up
    EXPECT_TRUE(host.window().sheet);
    host.settle();
}

struct BadItem {
    const char *situation;
    std::function<QVariant(const QString &folderURL)> at;
};

class BadItems : public HostOnBus, public testing::WithParamInterface<BadItem> { };

TEST_P(BadItems, areAnsweredWithNumberSixAndNoTextAndOpenNoWindow)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeFile(host.item(u"notes.txt"_s), "text");
    QVariantMap arguments;
    if (const QVariant at = GetParam().at(url({})); at.isValid())
        arguments.insert(u"at"_s, at);
    for (const QString &document : {QString(), documentPath()}) {
        const QDBusMessage answer = client.end(client.beginSubmit(arguments, document));
        EXPECT_EQ(errorOf(answer), u"org.sealwright.Error.N6"_s);
        EXPECT_EQ(errorTextOf(answer), QString());
    }
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Items, BadItems,
    testing::Values(BadItem{"absent", [](const QString &) { return QVariant(); }},
                    BadItem{"noValue", [](const QString &) { return QVariant(QVariantList()); }},
                    BadItem{"aNumber", [](const QString &) { return QVariant(5); }},
                    BadItem{"aPathWithoutScheme",
                            [](const QString &folder) { return QUrl(folder + u"Foo.app"_s).toLocalFile(); }},
                    BadItem{"anotherScheme",
                            [](const QString &) { return QVariant(u"https://example.com/Foo.app"_s); }},
                    BadItem{"missing", [](const QString &folder) { return folder + u"None.app"_s; }},
                    BadItem{"ofAnotherKind", [](const QString &folder) { return folder + u"notes.txt"_s; }}),
    [](const auto &row) { return std::string(row.param.situation); });

TEST_F(Commands, anExtensionInCapitalsIsTaken)
{
    const QDBusPendingCall call = client.beginSubmit({{u"at"_s, appURL(u"Foo.APP"_s)}});
    EXPECT_EQ(variantOf(endWithPolls(call)), QVariant(resultURL(u"Foo.APP"_s)));
}

TEST_F(Commands, aWrongTypeIsNamedBeforeAnythingElseIsLookedAt)
{
    const QDBusMessage answer = submit({{u"at"_s, u"nothing"_s}, {u"showingDialogs"_s, u"yes"_s}});
    EXPECT_EQ(errorOf(answer), buserror::invalidArgs);
    EXPECT_TRUE(errorTextOf(answer).contains(u"showingDialogs"_s));
    EXPECT_EQ(errorOf(submit({{u"at"_s, appURL()}, {u"skippingStapling"_s, 1}})), buserror::invalidArgs);
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Commands, keysThatTheCommandDoesNotReadAreNotLookedAt)
{
    const QDBusPendingCall call = client.beginSubmit(
        {{u"at"_s, appURL()}, {u"pageToFetch"_s, u"x"_s}, {u"showingDialogs"_s, QVariantList()}});
    EXPECT_EQ(variantOf(endWithPolls(call)), QVariant(resultURL(u"Foo.app"_s)));
}

TEST_F(Commands, aBusyDocumentRefusesAndTheApplicationOpensAnother)
{
    const QDBusPendingCall first = beginEndlessSubmission();
    const QString busy = documentPath();
    const QDBusMessage refused = submit({{u"at"_s, appURL()}}, busy);
    EXPECT_EQ(errorOf(refused), u"org.sealwright.Error.N1199"_s);
    EXPECT_EQ(errorTextOf(refused), u"Document is busy, status: submitting."_s);
    EXPECT_EQ(errorOf(submit({{u"at"_s, u"bad"_s}}, busy)), u"org.sealwright.Error.N6"_s);

    const QDBusPendingCall second = client.beginSubmit({{u"at"_s, appURL(u"Bar.app"_s)}});
    EXPECT_EQ(variantOf(endWithPolls(second)), QVariant(url(u"Bar - Notarized/Bar.app"_s)));
    EXPECT_EQ(documentCount(), 2);
    EXPECT_FALSE(first.isFinished());
    client.call(busy, bus::documentInterface, u"Cancel"_s);
    client.end(first);
    host.settle();
}

TEST_F(Commands, anApplicationThatAsksAPersonRefuses)
{
    host.application().changeStatus(u"interacting");
    const QDBusMessage answer = submit({{u"at"_s, appURL()}});
    EXPECT_EQ(errorOf(answer), u"org.sealwright.Error.N1199"_s);
    EXPECT_EQ(errorTextOf(answer), u"Application is busy, status: interacting."_s);
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(Commands, aFailureHasTheNumberOfItsTitleAndItsText)
{
    failSigningWith("no identity");
    const QDBusMessage answer = submit({{u"at"_s, appURL()}}, documentPath());
    EXPECT_EQ(errorOf(answer), u"org.sealwright.Error.N1110"_s);
    EXPECT_TRUE(errorTextOf(answer).startsWith(u"Error Signing Code: "_s));
    EXPECT_TRUE(errorTextOf(answer).contains(u"no identity"_s));
    EXPECT_TRUE(isNoValue(lastErrorFrom(client)));
    host.settle();
}

TEST_F(Commands, theTextThatIsTooLongForAnErrorIsKeptForTheAskingConnection)
{
    failSigningWith(QByteArray(2000, 'x'));
    BusClient other(host);
    const QDBusMessage answer = submit({{u"at"_s, appURL()}}, documentPath());
    EXPECT_EQ(errorTextOf(answer),
              u"Error Signing Code: See the 'from' parameter for detailed error message."_s);
    EXPECT_TRUE(lastErrorText(client).contains(QString(2000, u'x')));
    EXPECT_TRUE(isNoValue(lastErrorFrom(other)));
    EXPECT_EQ(errorOf(submit({{u"at"_s, u"bad"_s}})), u"org.sealwright.Error.N6"_s);
    EXPECT_TRUE(isNoValue(lastErrorFrom(client))); // the latest error has none
    host.settle();
}

TEST_F(Commands, aCallThatWantsNoAnswerLeavesTheLatestErrorAlone)
{
    failSigningWith(QByteArray(2000, 'x'));
    submit({{u"at"_s, appURL()}}, documentPath());
    QDBusMessage unanswered = QDBusMessage::createMethodCall(
        bus::service, bus::applicationPath, bus::applicationInterface, u"SubmitForNotarizing"_s);
    unanswered.setArguments({QVariantMap{{u"at"_s, u"bad"_s}}});
    EXPECT_TRUE(client.connection().send(unanswered));
    EXPECT_TRUE(lastErrorText(client).contains(QString(2000, u'x')));
    host.settle();
}

TEST_F(Commands, aFailureAfterTheUploadNamesTheItem)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .error = "no ticket"});
    const QDBusPendingCall call = client.beginSubmit({{u"at"_s, appURL()}}, documentPath());
    EXPECT_EQ(errorOf(endWithPolls(call)), u"org.sealwright.Error.N1200"_s);
    const QString item = lastErrorText(client);
    EXPECT_TRUE(item.startsWith(u"file:///"_s) && item.endsWith(u"/Foo.app"_s)) << item.toStdString();
    host.settle();
}

TEST_F(Commands, aCallerThatVanishesLosesOnlyItsAnswer)
{
    auto leaving = std::make_unique<BusClient>(host);
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    leaving->beginSubmit({{u"at"_s, appURL()}}, documentPath());
    waitForCredentialCheck();
    leaving.reset();
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DocStatus"_s), QVariant(u"submitting"_s));
    cancel();
    host.settle();
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DocStatus"_s), QVariant(u"ready"_s));
}

TEST_F(Commands, aCallerThatWantsNoAnswerGetsNone)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(bus::service, documentPath(), bus::documentInterface, u"FetchLog"_s);
    message << QVariantMap();
    ASSERT_TRUE(client.connection().send(message));
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DocStatus"_s), QVariant(u"ready"_s));
}

TEST_F(Commands, ofTwoThatArriveTogetherTheSecondIsRefusedAsBusy)
{
    const QVariantMap arguments{{u"at"_s, appURL()}};
    const QDBusPendingCall first = client.beginSubmit(arguments, documentPath());
    const QDBusPendingCall second =
        client.begin(documentPath(), bus::documentInterface, u"SignOnly"_s, {arguments});
    EXPECT_EQ(failureOf(client.end(second)), u"N1199 Document is busy, status: submitting."_s);
    EXPECT_EQ(variantOf(endWithPolls(first)), QVariant(url(u"Foo - Notarized/Foo.app"_s)));
    EXPECT_EQ(host.tools.callsOf(u"altool--notarize-app"_s).size(), 1);
}

TEST_F(Commands, aDocumentThatACommandHasMadeIsBusyForTheNextOne)
{
    client.listen();
    const QDBusPendingCall first = client.beginSubmit({{u"at"_s, appURL()}});
    QString made; // known from the signal, before the work has begun
    QObject::connect(&host.application(), &AppDelegate::documentAdded, &client,
                     [&](MainWinController *document) { made = path(*document); });
    host.runUntil([&] { return !made.isEmpty(); });
    const QDBusMessage second =
        client.call(made, bus::documentInterface, u"SignOnly"_s, {QVariantMap{{u"at"_s, appURL()}}});
    EXPECT_EQ(failureOf(second), u"N1199 Document is busy, status: submitting."_s);
    EXPECT_EQ(variantOf(endWithPolls(first)), QVariant(url(u"Foo - Notarized/Foo.app"_s)));
}

TEST_F(Commands, eachOfManyThatArriveTogetherIsAnswered)
{
    constexpr int many = 500;
    QList<QDBusPendingCall> calls;
    for (int number = 0; number < many; ++number)
        calls.append(client.begin(documentPath(), bus::documentInterface, u"FetchLog"_s, {QVariantMap()}));
    for (const QDBusPendingCall &call : calls)
        EXPECT_EQ(variantOf(client.end(call)), QVariant(u""_s));
}
