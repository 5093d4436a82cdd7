// Announcements of how runs have ended, for whoever turned them on.

#include "ui/endingnotices.h"
#include "app/preferencekeys.h"
#include "ui/framewindow.h"

#include "support/items.h"
#include "windowtest.h"

using namespace Qt::StringLiterals;

namespace {

class EndingAnnounced : public WindowTest {
protected:
    EndingAnnounced() { host.preferences.setValue(key::notifiesOfEndings, true); }

    void submit()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.submitToTheEnd(host.item(u"Foo.app"_s));
        settle();
    }
    void settle()
    {
        host.settle();
        QCoreApplication::processEvents();
    }
    /// The titles and texts of the messages that can be clicked.
    QStringList announced() const
    {
        QStringList texts;
        for (const auto &message : host.userNotifications.delivered) {
            if (message.wasClicked)
                texts.append(message.title + u'|' + message.informativeText);
        }
        return texts;
    }

    EndingNotices notices{host.application()};
};

} // namespace

TEST_F(EndingAnnounced, isOffAsDelivered)
{
    host.preferences.remove(key::notifiesOfEndings);
    submit();
    ASSERT_EQ(host.userNotifications.delivered.size(), 1) << "the one that each notarized submission has";
    EXPECT_EQ(host.userNotifications.delivered.first().title, u"Notarization Successful"_s);
}

TEST_F(EndingAnnounced, saysThatAnItemIsNotarizedBesideTheOneMessage)
{
    submit();
    EXPECT_EQ(announced(), QStringList{u"Foo.app: Notarized|Foo.app is notarized and stapled."_s});
    ASSERT_EQ(host.userNotifications.delivered.size(), 2);
    EXPECT_FALSE(host.userNotifications.delivered.first().wasClicked);
}

TEST_F(EndingAnnounced, givesTheReasonOfAFailure)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = "no identity\n"});
    submit();
    ASSERT_EQ(announced().size(), 1);
    EXPECT_TRUE(announced().first().startsWith(u"Foo.app: Error Signing Code|"_s));
    EXPECT_TRUE(announced().first().contains(u"no identity"_s)) << announced().first().toStdString();
}

TEST_F(EndingAnnounced, isNotShownWhileAWindowOfTheApplicationIsActive)
{
    submit();
    const auto &message = host.userNotifications.delivered.last();
    ASSERT_TRUE(message.wasClicked);
    EXPECT_FALSE(AppDelegate::shouldPresentNotification(message)) << "what is asked while one is active";
}

TEST_F(EndingAnnounced, leadsToTheDocumentOnAClick)
{
    submit();
    MainWinController &ended = document();
    answer(u"OK"_s);
    host.application().newDocument(2);
    ASSERT_NE(&document(), &ended);
    host.userNotifications.delivered.last().wasClicked(u"token"_s);
    FrameWindow &frame = *dynamic_cast<WidgetWindow &>(ended.window()).frameWindow();
    EXPECT_EQ(frame.selectedWindow(), &ended.window());
    EXPECT_EQ(host.applicationHost.activationToken, u"token"_s);
}

TEST_F(EndingAnnounced, leadsToTheApplicationWhereTheDocumentIsClosed)
{
    submit();
    const auto message = host.userNotifications.delivered.last();
    document().window().close();
    settle();
    const int before = host.applicationHost.activations;
    message.wasClicked({});
    EXPECT_EQ(host.applicationHost.activations, before + 1);
}

TEST_F(EndingAnnounced, isThatOfRunsAndNotOfQuestionsToTheService)
{
    submit();
    document().perform(Action::doFetchHistory);
    settle();
    EXPECT_EQ(announced().size(), 1);
}
