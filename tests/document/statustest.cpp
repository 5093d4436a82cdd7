// The status word.

#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Status : public testing::Test {
protected:
    Status()
    {
        host.launch();
        host.settle();
        host.window().subtitles.clear();
    }

    MainWinController &document() { return host.document(); }

    TestHost host;
};

/// A window on a host whose windows have no place for a second title.
class PlainWindow : public FakeWindow {
public:
    using FakeWindow::FakeWindow;
    void setSubtitle(const QString &) override { }
};

class PlainWindowFactory : public WindowFactory {
public:
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(MainWinController &) override
    {
        return std::make_unique<PlainWindow>(*application);
    }
    [[nodiscard]] std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &) override
    {
        return nullptr;
    }
    FakeApplication *application = nullptr;
};

} // namespace

TEST_F(Status, changesAtOnceAndInTheWindowAMomentLater)
{
    document().changeStatus(status::submitting);
    EXPECT_EQ(document().statusString(), u"submitting"_s);
    EXPECT_TRUE(host.window().subtitles.isEmpty());
    host.settle();
    EXPECT_EQ(host.window().subtitles, QStringList{u"submitting"_s});
}

TEST_F(Status, givenTheSameWordTwiceTouchesTheWindowOnce)
{
    document().changeStatus(status::submitting);
    document().changeStatus(status::submitting);
    host.settle();
    EXPECT_EQ(host.window().subtitles, QStringList{u"submitting"_s});
}

TEST_F(Status, givenNoWordStaysAsItIs)
{
    document().changeStatus({});
    host.settle();
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.window().subtitles.isEmpty());
}

TEST_F(Status, mayBeChangedByAWorker)
{
    QString seen;
    onWorker(document(), [&] {
        document().changeStatus(status::waiting);
        seen = document().statusString();
    });
    host.settle();
    EXPECT_EQ(seen, u"waiting"_s);
    EXPECT_EQ(host.window().subtitles, QStringList{u"waiting"_s});
}

TEST_F(Status, ofADocumentLeavesTheApplicationsAndOtherDocumentsAlone)
{
    host.application().newDocument(0);
    document().changeStatus(status::fetching);
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
    EXPECT_EQ(host.application().allControllers().first()->statusString(), u"ready"_s);
}

TEST(StatusWords, areTheseSeven)
{
    EXPECT_EQ(status::loading, u"loading");
    EXPECT_EQ(status::ready, u"ready");
    EXPECT_EQ(status::interacting, u"interacting");
    EXPECT_EQ(status::submitting, u"submitting");
    EXPECT_EQ(status::waiting, u"waiting");
    EXPECT_EQ(status::stapling, u"stapling");
    EXPECT_EQ(status::fetching, u"fetching");
}

TEST(StatusWithoutSubtitles, stillChangesTheField)
{
    PlainWindowFactory factory;
    TestHost host(&factory);
    factory.application = &host.applicationHost;
    host.launch();
    host.document().changeStatus(status::submitting);
    host.settle();
    EXPECT_EQ(host.document().statusString(), u"submitting"_s);
    EXPECT_EQ(host.window().title(), u"Untitled"_s) << "nor does the word go where there is a place";
}
