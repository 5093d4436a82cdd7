// Going on with a wait for a verdict, over a real bus.

#include "dbus/hostonbus.h"

using namespace Qt::StringLiterals;

class ResumeOnBus : public HostOnBus {
protected:
    ResumeOnBus() { host.stateFolder = host.item(u"../state"_s); }

    QString folder() const { return host.item(u"Foo - Submitted"_s); }

    /// A submission that nobody waits for any more.
    void leaveWait()
    {
        const QDBusPendingCall call = client.beginSubmit({{u"at"_s, appURL()}}, documentPath());
        host.runUntil([this] { return !host.timers.armed().isEmpty(); });
        host.settle();
        host.document().staplingTimer()->invalidate();
        host.document().window().close();
        host.settle();
    }
    QDBusPendingCall beginResume(const QVariant &at)
    {
        return client.begin(bus::applicationPath, bus::applicationInterface, u"Resume"_s,
                            {QVariantMap{{u"at"_s, at}}});
    }
    QDBusMessage resume(const QVariant &at) { return client.end(beginResume(at)); }
    QString textOf(const QDBusMessage &answer) { return answer.arguments().value(0).toString(); }
};

TEST_F(ResumeOnBus, answersAsStaplingDoes)
{
    leaveWait();
    const QDBusPendingCall call = beginResume(url(u"Foo - Submitted"_s));
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    host.firePolls();
    EXPECT_EQ(variantOf(client.end(call)), QVariant(url(u"Foo - Notarized/Foo.app"_s)));
    EXPECT_EQ(ofApplication(u"Waiting"_s).toStringList(), QStringList());
}

TEST_F(ResumeOnBus, whatWaitsIsAListOfFoldersWhetherSomebodyAttendsToItOrNot)
{
    EXPECT_EQ(ofApplication(u"Waiting"_s).toStringList(), QStringList());
    leaveWait();
    EXPECT_EQ(ofApplication(u"Waiting"_s).toStringList(), QStringList{folder()});
    const QDBusPendingCall call = beginResume(url(u"Foo - Submitted"_s));
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    EXPECT_EQ(ofApplication(u"Waiting"_s).toStringList(), QStringList{folder()});
    host.settle();
    cancel();
    EXPECT_EQ(errorOf(client.end(call)), u"org.sealwright.Error.N1118"_s);
    EXPECT_EQ(ofApplication(u"Waiting"_s).toStringList(), QStringList());
}

TEST_F(ResumeOnBus, aSecondOneIsToldWhyNot)
{
    leaveWait();
    const QDBusPendingCall first = beginResume(url(u"Foo - Submitted"_s));
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    const QDBusMessage second = resume(url(u"Foo - Submitted/Foo.app"_s));
    EXPECT_EQ(errorOf(second), u"org.sealwright.Error.N7"_s);
    EXPECT_EQ(textOf(second), u"Another run works in '%1'."_s.arg(folder()));
    EXPECT_EQ(host.application().allControllers().size(), 1);
    host.settle();
    host.firePolls();
    EXPECT_EQ(variantOf(client.end(first)), QVariant(url(u"Foo - Notarized/Foo.app"_s)));
}

TEST_F(ResumeOnBus, ofTwoThatArriveTogetherOneGoesOnAndTheOtherIsToldWhyNot)
{
    leaveWait();
    const QDBusPendingCall one = beginResume(url(u"Foo - Submitted"_s));
    const QDBusPendingCall other = beginResume(url(u"Foo - Submitted"_s));
    host.runUntil([&] { return (one.isFinished() || other.isFinished()) && !host.timers.armed().isEmpty(); });
    const QDBusMessage refusal = client.end(one.isFinished() ? one : other);
    EXPECT_EQ(errorOf(refusal), u"org.sealwright.Error.N7"_s);
    EXPECT_TRUE(textOf(refusal).contains(u"Another run works in"_s));
    host.settle();
    const bool otherGoesOn = one.isFinished();
    host.firePolls();
    EXPECT_EQ(variantOf(client.end(otherGoesOn ? other : one)), QVariant(url(u"Foo - Notarized/Foo.app"_s)));
}

TEST_F(ResumeOnBus, whatIsNoSubmissionIsAWrongArgument)
{
    for (const QVariant &at : {QVariant(url(u"gone"_s)), QVariant(appURL()), QVariant(u"/tmp"_s)})
        EXPECT_EQ(errorOf(resume(at)), u"org.sealwright.Error.N6"_s);
    EXPECT_EQ(
        errorOf(client.call(bus::applicationPath, bus::applicationInterface, u"Resume"_s, {QVariantMap()})),
        u"org.sealwright.Error.N6"_s);
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

TEST_F(ResumeOnBus, aVerdictThatRefusesIsTheErrorOfASubmission)
{
    leaveWait();
    host.tools.answer(u"altool--notarization-info"_s, {.output = FakeTools::infoReport(u"invalid"_s)});
    const QDBusPendingCall call = beginResume(url(u"Foo - Submitted"_s));
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    host.firePolls();
    EXPECT_EQ(errorOf(client.end(call)), u"org.sealwright.Error.N1117"_s);
}
