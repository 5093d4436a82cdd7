#include "dbus/hostonbus.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

class DocumentObject : public HostOnBus {
protected:
    QDBusMessage call(const QString &method, const QVariantList &arguments = {})
    {
        return client.call(documentPath(), bus::documentInterface, method, arguments);
    }
};

TEST_F(DocumentObject, itsLogIsHeardEntryByEntryWithTheStyle)
{
    client.listen();
    host.document().logString(u"one"_s);
    host.document().logBoldString(u"two"_s);
    host.document().logError(u"three\nlines\n"_s);
    host.settle();
    EXPECT_EQ(
        client.heard(bus::documentInterface),
        (QStringList{u"LogAppended(14:03:22.123: one, plain)"_s, u"LogAppended(14:03:22.123: two, bold)"_s,
                     u"LogAppended(14:03:22.123: three\nlines\n, error)"_s}));
    EXPECT_EQ(client.messagesHeard().last().path(), documentPath());
}

TEST_F(DocumentObject, aClearedLogIsHeard)
{
    client.listen();
    host.document().doClearStatus();
    EXPECT_EQ(client.heard(bus::documentInterface), QStringList{u"LogCleared()"_s});
}

TEST_F(DocumentObject, eachStatusIsHeardOnceInItsOrder)
{
    client.listen();
    host.document().changeStatus(u"interacting");
    host.document().changeStatus(u"interacting");
    host.document().changeStatus(u"ready");
    EXPECT_EQ(client.heard(bus::documentInterface),
              (QStringList{u"StatusChanged(interacting)"_s, u"StatusChanged(ready)"_s}));
}

TEST_F(DocumentObject, aStatusThatAWorkerSetsIsHeardEvenIfItIsSoonAnother)
{
    client.listen();
    const DocumentPtr document = host.application().allControllers().last();
    onWorker(*document, [&document = *document] {
        document.changeStatus(u"waiting");
        document.changeStatus(u"stapling");
    });
    host.settle();
    EXPECT_EQ(client.heard(bus::documentInterface),
              (QStringList{u"StatusChanged(waiting)"_s, u"StatusChanged(stapling)"_s}));
}

TEST_F(DocumentObject, nothingIsHeardOfADocumentThatIsClosed)
{
    client.listen();
    const DocumentPtr held = host.application().allControllers().last();
    host.window().close();
    held->logString(u"late"_s);
    held->changeStatus(u"stapling");
    host.settle();
    EXPECT_TRUE(client.heard(bus::documentInterface).isEmpty());
}

TEST_F(DocumentObject, cancellingWhileIdleDoesNothing)
{
    EXPECT_EQ(errorOf(call(u"Cancel"_s)), u"no error"_s);
    EXPECT_FALSE(host.document().cancelPressed());
    EXPECT_TRUE(host.log().isEmpty());
}

TEST_F(DocumentObject, cancellingEndsTheCommandWithItsNumber)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(errorOf(call(u"Cancel"_s)), u"no error"_s);
    const QDBusMessage answer = client.end(submission);
    EXPECT_EQ(errorOf(answer), u"org.sealwright.Error.N1118"_s);
    EXPECT_EQ(errorTextOf(answer), u"Process Cancelled: Uploading of the app may not have been completed."_s);
    host.settle();
    EXPECT_EQ(client.get(documentPath(), bus::documentInterface, u"DocStatus"_s), QVariant(u"ready"_s));
}

TEST_F(DocumentObject, closingAnswersFirstAndThenCloses)
{
    EXPECT_EQ(errorOf(call(u"Close"_s)), u"no error"_s);
    host.runUntil([this] { return host.application().allControllers().isEmpty(); });
    EXPECT_TRUE(client.getPaths(u"OrderedDocuments"_s).isEmpty());
}

/// A script on a thread of its own, whose next call is on its way as soon as it has an answer.
TEST_F(DocumentObject, aScriptsNextCallFindsItClosed)
{
    constexpr int rounds = 100;
    int stillThere = 0;
    std::atomic<bool> isOver = false;
    std::thread script([&] {
        const QString name = u"script"_s;
        auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        const auto call = [&](const QString &path, const QString &interface, const QString &method,
                              const QVariantList &arguments) {
            QDBusMessage message = QDBusMessage::createMethodCall(bus::service, path, interface, method);
            message.setArguments(arguments);
            return connection.call(message).arguments().value(0);
        };
        for (int i = 0; i < rounds; ++i) {
            const auto made =
                call(bus::applicationPath, bus::applicationInterface, u"MakeDocument"_s, {QVariantMap()})
                    .value<QDBusObjectPath>();
            call(made.path(), bus::documentInterface, u"Close"_s, {});
            const QVariant list = call(bus::applicationPath, bus::propertiesInterface, u"Get"_s,
                                       {bus::applicationInterface, u"OrderedDocuments"_s});
            const auto paths = qdbus_cast<QList<QDBusObjectPath>>(list.value<QDBusVariant>().variant());
            stillThere += paths.size() > 1 ? 1 : 0;
        }
        QDBusConnection::disconnectFromBus(name);
        isOver = true;
    });
    host.runUntil([&] { return isOver.load(); });
    script.join();
    EXPECT_EQ(stillThere, 0) << "of " << rounds;
}

TEST_F(DocumentObject, itsLogIsFetchedAsItStands)
{
    host.document().logStringMain(u"one"_s, false);
    host.document().logStringMain(u"zwölf"_s, true);
    EXPECT_EQ(variantOf(call(u"FetchLog"_s, {QVariantMap()})),
              QVariant(u"14:03:22.123: one\n14:03:22.123: zwölf\n"_s));
}

TEST_F(DocumentObject, anEmptyLogIsAnEmptyTextAndNotNoValue)
{
    EXPECT_EQ(variantOf(call(u"FetchLog"_s, {QVariantMap()})), QVariant(u""_s));
}

TEST_F(DocumentObject, fetchingTheLogOfARunTakesTheRunsAnswerAway)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    host.runUntil([this] { return host.mainQueue.isEmpty(); }); // what the run logged so far has landed
    host.document().logStringMain(u"here"_s, false);
    const QDBusMessage log = call(u"FetchLog"_s, {QVariantMap()});
    EXPECT_TRUE(variantOf(log).toString().endsWith(u"here\n"_s));
    cancel();
    host.settle();
    client.heard(bus::documentInterface); // an answer would have come before this one
    EXPECT_FALSE(submission.isFinished());
}
