#include "dbus/hostonbus.h"

using namespace Qt::StringLiterals;

class WindowObject : public HostOnBus { };

TEST_F(WindowObject, closingItAnswersFirstAndThenCloses)
{
    const QDBusMessage answer = client.call(windowPath(), bus::windowInterface, u"Close"_s);
    EXPECT_EQ(errorOf(answer), u"no error"_s);
    host.runUntil([this] { return host.application().allControllers().isEmpty(); });
}

TEST_F(WindowObject, closingItAsksWhileTheDocumentIsBusy)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    client.call(windowPath(), bus::windowInterface, u"Close"_s);
    host.runUntil([this] { return host.window().sheet.has_value(); });
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Continue Closing?"_s);
    host.window().answerSheet();
    cancel();
    client.end(submission);
    host.settle();
}

TEST_F(WindowObject, theSecondOfTwoClosesFindsNothingToClose)
{
    const QDBusPendingCall first = client.begin(windowPath(), bus::windowInterface, u"Close"_s);
    const QDBusPendingCall second = client.begin(documentPath(), bus::documentInterface, u"Close"_s);
    client.end(first);
    client.end(second);
    host.settle();
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}
