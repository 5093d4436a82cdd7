// Panels of the desktop in the place of ours, by a portal on a bus of the test's own.

#include "ui/filepanels.h"
#include "platform/qt/filechooserportal.h"
#include "ui/itempanel.h"

#include "../platform/desktopbus.h"
#include "../platform/fakeportal.h"
#include "support/items.h"
#include "windowtest.h"

#include <QFile>
#include <QFileDialog>
#include <QPushButton>

using namespace Qt::StringLiterals;
using filepanels::DesktopPanel;

namespace {

/// A desktop that has panels.
class DesktopWithPanels : public WindowTest {
protected:
    DesktopWithPanels()
    {
        bus.start();
        bus.serve(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s, &portal);
        panels = std::make_unique<platform::FileChooserPortal>(bus.application, qApp);
        until([] { return filepanels::desktopPanels() != nullptr; });
    }
    ~DesktopWithPanels() override
    {
        if (window().sheet())
            window().sheet()->reject();
        host.settle();
        panels.reset();
        bus.stop();
    }

    DesktopPanel *panel() { return dynamic_cast<DesktopPanel *>(window().sheet()); }
    void awaitQuestion(qsizetype count = 1)
    {
        until([&] { return portal.asked.size() == count; });
    }
    void choose(const QString &path)
    {
        portal.answer(bus.desktop, 0, {QUrl::fromLocalFile(path).toString()});
    }

    DesktopBus bus;
    FakePortal portal;
    std::unique_ptr<platform::FileChooserPortal> panels;
};

} // namespace

TEST_F(DesktopWithPanels, isAskedForPlainFilesWhileTheDocumentWaits)
{
    document().perform(Action::doExtraEntitlements);
    awaitQuestion();
    ASSERT_TRUE(panel());
    EXPECT_TRUE(panel()->isVisible());
    EXPECT_EQ(portal.asked.first().title, u"Choose an entitlements property list file"_s);
    choose(u"/some/extra.plist"_s);
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(document().extraEntitlementsURL().toLocalFile(), u"/some/extra.plist"_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(DesktopWithPanels, isNotAskedForBundlesWhichAreFoldersToIt)
{
    document().perform(Action::doSubmit);
    until([this] { return dynamic_cast<ItemPanel *>(window().sheet()) != nullptr; });
    EXPECT_TRUE(portal.asked.isEmpty());
}

TEST_F(DesktopWithPanels, isGivenUpFromTheWindowToo)
{
    document().perform(Action::doExtraEntitlements);
    awaitQuestion();
    until([this] { return panel() && panel()->isVisible(); });
    panel()->findChild<QPushButton *>(u"desktopPanelCancel"_s)->click();
    until([this] { return !window().hasSheet(); });
    EXPECT_TRUE(document().extraEntitlementsURL().isEmpty());
}

TEST_F(DesktopWithPanels, isAskedAgainWhereWhatItChoseMayNotBeChosen)
{
    document().perform(Action::doExtraEntitlements);
    awaitQuestion();
    choose(u"/some/text.txt"_s);
    awaitQuestion(2);
    choose(u"/some/extra.plist"_s);
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(document().extraEntitlementsURL().toLocalFile(), u"/some/extra.plist"_s);
}

TEST_F(DesktopWithPanels, isStoodInForByOursWhereItsPanelDoesNotComeUp)
{
    portal.refuses = true;
    document().perform(Action::doExtraEntitlements);
    until([this] { return dynamic_cast<ItemPanel *>(window().sheet()) != nullptr; });
    EXPECT_EQ(portal.asked.size(), 1);
}

TEST_F(DesktopWithPanels, isAskedWhereTheLogGoes)
{
    document().logStringMain(u"a line"_s, false);
    window().saveLog();
    awaitQuestion();
    EXPECT_EQ(portal.asked.first().method, u"SaveFile"_s);
    EXPECT_EQ(portal.asked.first().options.value(u"current_name"_s), u"Untitled log.txt"_s);
    choose(host.item(u"saved.txt"_s));
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(host.text(u"saved.txt"_s), document().statusTextView.string());
    EXPECT_TRUE(host.text(u"saved.txt"_s).endsWith(u": a line\n"_s));
}

// Saving the log in our own panel

TEST_F(WindowTest, theWholeLogIsSavedWhateverIsInSight)
{
    document().logStringMain(u"a line"_s, false);
    document().logErrorMain(u"an error"_s);
    window().saveLog();
    auto &panel = dynamic_cast<QFileDialog &>(*window().sheet());
    EXPECT_EQ(panel.objectName(), u"saveLogPanel"_s);
    panel.selectFile(host.item(u"saved"_s));
    static_cast<QDialog &>(panel).accept();
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(host.text(u"saved.txt"_s), document().statusTextView.string()) << "with the usual extension";
}

TEST_F(WindowTest, aLogThatCannotBeSavedIsTold)
{
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "writeFileAtomically"_L1 ? u"There is no room."_s : QString();
    };
    window().saveLog();
    auto &panel = dynamic_cast<QFileDialog &>(*window().sheet());
    panel.selectFile(host.item(u"saved.txt"_s));
    static_cast<QDialog &>(panel).accept();
    EXPECT_EQ(awaitSheet().text(), u"The log is not saved"_s);
    EXPECT_EQ(awaitSheet().informativeText(), u"There is no room."_s);
    answer(u"OK"_s);
}

TEST_F(WindowTest, aLogIsNotSavedWhereNoPlaceIsChosen)
{
    window().saveLog();
    window().sheet()->reject();
    until([this] { return !window().hasSheet(); });
    EXPECT_EQ(host.listing(), QStringList());
}
