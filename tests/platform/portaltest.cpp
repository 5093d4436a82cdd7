// The desktop's panels for files, by a portal on a bus of the test's own.

#include "desktopbus.h"
#include "eventwait.h"
#include "fakeportal.h"
#include "platform/qt/filechooserportal.h"

using namespace Qt::StringLiterals;
using namespace platform;
using Ending = FileChooserPortal::Ending;
using Kind = FileChooserPortal::Kind;

namespace {

class FilePanels : public Desktop {
protected:
    void SetUp() override
    {
        Desktop::SetUp();
        serve(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s, &portal);
        panels = std::make_unique<FileChooserPortal>(application);
        ASSERT_TRUE(waitFor([this] { return panels->isThere(); }));
    }
    quint64 ask(const FileChooserPortal::Question &question)
    {
        const quint64 number =
            panels->ask(question, context, [this](const auto &answer) { answers.append(answer); });
        EXPECT_TRUE(waitFor([this] { return !portal.asked.isEmpty(); }));
        return number;
    }
    FileChooserPortal::Answer answered(uint code, const QStringList &uris)
    {
        portal.answer(desktop, code, uris);
        EXPECT_TRUE(waitFor([this] { return !answers.isEmpty(); }));
        return answers.value(0);
    }

    FakePortal portal;
    std::unique_ptr<FileChooserPortal> panels;
    QObject context;
    QList<FileChooserPortal::Answer> answers;
};

} // namespace

TEST_F(Desktop, withoutAPortalHasNoPanels)
{
    const FileChooserPortal panels(application);
    settle();
    QCoreApplication::processEvents();
    EXPECT_FALSE(panels.isThere());
}

TEST_F(Desktop, whosePortalComesLateHasPanelsFromThenOn)
{
    const FileChooserPortal panels(application);
    settle();
    QCoreApplication::processEvents();
    ASSERT_FALSE(panels.isThere());
    FakePortal portal;
    serve(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s, &portal);
    EXPECT_TRUE(waitFor([&] { return panels.isThere(); }));
}

TEST_F(FilePanels, areAskedForAFileOfAKindInAFolder)
{
    ask({Kind::openFile, u"Choose it"_s, u"x11:1a"_s, u"/some folder"_s, {u"plist"_s}, {}});
    const FakePortal::Asked asked = portal.asked.first();
    EXPECT_EQ(asked.method, u"OpenFile"_s);
    EXPECT_EQ(asked.title, u"Choose it"_s);
    EXPECT_EQ(asked.parent, u"x11:1a"_s);
    EXPECT_EQ(asked.options.value(u"current_folder"_s).toByteArray(), QByteArray("/some folder\0", 13));
    EXPECT_FALSE(asked.options.contains(u"directory"_s));
    EXPECT_TRUE(asked.options.contains(u"filters"_s));
    const auto answer = answered(0, {u"file:///some%20folder/%C3%A4.plist"_s});
    EXPECT_EQ(answer.ending, Ending::chosen);
    EXPECT_EQ(answer.path, u"/some folder/ä.plist"_s);
}

TEST_F(FilePanels, areAskedForAFolderAndForAPlaceToSave)
{
    ask({Kind::openFolder, u"folder"_s, {}, u"/"_s, {}, {}});
    EXPECT_EQ(portal.asked.first().options.value(u"directory"_s), true);
    EXPECT_FALSE(portal.asked.first().options.contains(u"filters"_s));
    answered(1, {});
    panels->ask({Kind::saveFile, u"save"_s, {}, u"/"_s, {}, u"log.txt"_s}, context, [](const auto &) {});
    ASSERT_TRUE(waitFor([this] { return portal.asked.size() == 2; }));
    EXPECT_EQ(portal.asked.last().method, u"SaveFile"_s);
    EXPECT_EQ(portal.asked.last().options.value(u"current_name"_s), u"log.txt"_s);
}

TEST_F(FilePanels, thatAreCancelledChooseNothing)
{
    ask({Kind::openFile, {}, {}, u"/"_s, {}, {}});
    const auto answer = answered(1, {u"file:///tmp/x"_s});
    EXPECT_EQ(answer.ending, Ending::cancelled);
    EXPECT_EQ(answer.path, QString());
}

TEST_F(FilePanels, thatChooseWhatIsNoFileChooseNothing)
{
    ask({Kind::openFile, {}, {}, u"/"_s, {}, {}});
    EXPECT_EQ(answered(0, {u"https://example.com/x"_s}).ending, Ending::cancelled);
}

TEST_F(FilePanels, thatDoNotComeUpAreToldAsFailed)
{
    portal.refuses = true;
    panels->ask({Kind::openFile, {}, {}, u"/"_s, {}, {}}, context,
                [this](const auto &answer) { answers.append(answer); });
    ASSERT_TRUE(waitFor([this] { return !answers.isEmpty(); }));
    EXPECT_EQ(answers.first().ending, Ending::failed);
}

TEST_F(FilePanels, ofAPortalThatNamesItsAnswersOtherwiseAreHeardToo)
{
    portal.usesOtherHandles = true;
    ask({Kind::openFile, {}, {}, u"/"_s, {}, {}});
    roundTrip(desktop);
    settle(); // the reply with the name is here,
    QCoreApplication::processEvents();
    settle(); // and the bus knows what we listen to
    EXPECT_EQ(answered(0, {u"file:///tmp/x"_s}).path, u"/tmp/x"_s);
}

TEST_F(FilePanels, thatAreTakenAwayAnswerNoMore)
{
    panels->cancel(ask({Kind::openFile, {}, {}, u"/"_s, {}, {}}));
    portal.answer(desktop, 0, {u"file:///tmp/x"_s});
    const QString first = portal.handle;
    panels->ask({Kind::openFile, {}, {}, u"/"_s, {}, {}}, context,
                [this](const auto &answer) { answers.append(answer); });
    ASSERT_TRUE(waitFor([&] { return portal.handle != first; }));
    EXPECT_EQ(answered(0, {u"file:///tmp/second"_s}).path, u"/tmp/second"_s);
    EXPECT_EQ(answers.size(), 1);
}
