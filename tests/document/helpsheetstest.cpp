// The help sheets of a document's window.

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct HelpRow {
    const char *name;
    Action action;
    quint64 altoolVersion;
    QString extraEntitlementsFile; ///< path; null for none
    platform::Alert alert;
    TextField DocumentControls::*fieldAfterwards;
};

class Help : public testing::TestWithParam<HelpRow> {
protected:
    Help()
    {
        host.launch();
        host.application().altoolVersionNumber.set(GetParam().altoolVersion);
        if (const QString file = GetParam().extraEntitlementsFile; !file.isNull())
            document().extraEntitlementsURL.set(itempath::toUrl(file));
        for (TextField DocumentControls::*field :
             {&DocumentControls::appleIDField, &DocumentControls::appPassField,
              &DocumentControls::providerNameField}) {
            QObject::connect(&(document().*field), &TextField::focusRequested, &document(), [this, field] {
                focused.append(&(document().*field));
                statusWhenFocused = document().statusString();
            });
        }
    }

    MainWinController &document() { return host.document(); }

    TestHost host;
    QList<TextField *> focused;
    QString statusWhenFocused;
};

const QString siteOfAccount = u"<https://appleid.apple.com/account/manage>"_s;

const HelpRow rows[] = {
    {"appPassword",
     Action::doAppPassHelp,
     4,
     {},
     {u"App-Specific Password"_s,
      u"Notarizing uses a tool that requires password authorization. This means you need to do two things:\n\n• Set up an app-specific password. You do this by signing into you Apple ID account page "_s
          + siteOfAccount
          + u", and clicking Generate Password below App-Specific Passwords.\n\n• Add the app-specific password to your login keychain. Open Keychain Access.app, select the login keychain on the left, choose File -> New Password Item…, and enter the name of your app-specific password as the Keychain Item Name, enter your Apple ID for the Account Name, and enter the actual app-specific password in the Password field.\n\nYou should enter the name of the app-specific password in the selected field."_s,
      {}},
     &DocumentControls::appPassField},
    {"providerWhereTheToolListsThem",
     Action::doTeamProviderHelp,
     4,
     {},
     {u"Provider Short Name"_s,
      u"You do not need to enter anything into this field unless your Developer ID is used for more than one development team.\n\nClick the Choose button to choose from your provider short names."_s,
      {u"Choose"_s, u"Cancel"_s}},
     &DocumentControls::providerNameField},
    {"providerWithALaterTool",
     Action::doTeamProviderHelp,
     5,
     {},
     {u"Provider Short Name"_s,
      u"You do not need to enter anything into this field unless your Developer ID is used for more than one development team.\n\nClick the Choose button to choose from your provider short names."_s,
      {u"Choose"_s, u"Cancel"_s}},
     &DocumentControls::providerNameField},
    {"providerWhereTheToolDoesNotListThem",
     Action::doTeamProviderHelp,
     3,
     {},
     {u"Provider Short Name"_s,
      u"You do not need to enter anything into this field unless your Developer ID is used for more than development one team.\n\nThe Choose button, which lets you choose from the teams you are a member of, is only available if you have Xcode version 11 or later installed."_s,
      {}},
     &DocumentControls::providerNameField},
    {"extraEntitlementsWithoutAFile",
     Action::doExtraEntitlementsHelp,
     4,
     {},
     {u"Extra Entitlements"_s,
      u"If you need to code-sign your app with entitlements not shown here, you can click on the Extra entitlements checkbox and select a .plist file containing them. In the case of conflict, those in the file will override other settings made here."_s,
      {}},
     &DocumentControls::providerNameField},
    {"extraEntitlementsWithAFile",
     Action::doExtraEntitlementsHelp,
     4,
     u"/items/My %1 100%25 ü/Extra.plist"_s,
     {u"Extra Entitlements"_s,
      u"If you need to code-sign your app with entitlements not shown here, you can click on the Extra entitlements checkbox and select a .plist file containing them. In the case of conflict, those in the file will override other settings made here.\n\nThe active extra entitlements file is ‘/items/My %1 100%25 ü/Extra.plist’."_s,
      {}},
     &DocumentControls::providerNameField},
    {"diskImageOptions",
     Action::doDropDMGHelp,
     4,
     {},
     {u"Disk Image Options"_s,
      u"When submitting other than a disk image file, Sealwright can either upload a .zip version of the file after signing it, and then staple the signed file, or it can upload a locked disk image of the file, and then staple that disk image ready for distribution.\n\nIf you choose to create a disk image and you have the application DropDMG.app installed, you can choose a DropDMG configuration to be used. This allows you greater control over the arrangement and contents of the disk image.\n\nOtherwise Sealwright will create a disk image containing just the submitted file.\n\nThe notarization process only accepts read-only Mac .dmg files, so if you choose a DropDMG configuration that specifies an incompatible format, notarization will fail."_s,
      {}},
     &DocumentControls::providerNameField},
};

} // namespace

TEST_P(Help, showsItsTextAsASheet)
{
    document().perform(GetParam().action);
    ASSERT_TRUE(host.window().sheet);
    const platform::Alert alert = host.window().sheet->alert;
    EXPECT_EQ(alert.messageText, GetParam().alert.messageText);
    EXPECT_EQ(alert.informativeText, GetParam().alert.informativeText);
    EXPECT_EQ(alert.buttons, GetParam().alert.buttons);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_EQ(host.applicationHost.beeps, 0);
}

TEST_P(Help, endsAnEditFirst)
{
    document().perform(GetParam().action);
    EXPECT_EQ(host.window().editsEnded, 1);
    EXPECT_EQ(host.window().focusesTaken, 1);
    EXPECT_TRUE(focused.isEmpty()) << "not before the answer";
}

TEST_P(Help, comesUpEvenIfAnEditCannotBeEnded)
{
    host.window().refusesToGiveUpFocus = true;
    document().perform(GetParam().action);
    EXPECT_TRUE(host.window().sheet);
}

TEST_P(Help, givesTheFocusToItsFieldAndIsReadyAfterwards)
{
    document().perform(GetParam().action);
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_EQ(focused, QList<TextField *>{&(document().*GetParam().fieldAfterwards)});
    EXPECT_EQ(statusWhenFocused, u"interacting"_s) << "the document is ready when all is done";
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(host.window().sheet);
}

TEST_P(Help, listsTheProvidersWhereTheyCanBeChosen)
{
    const bool offersThem = GetParam().alert.buttons.value(0) == "Choose"_L1;
    document().perform(GetParam().action);
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_FALSE(host.window().namedSheet) << "not before the help has gone";
    EXPECT_EQ(document().statusString(), u"ready"_s);
    host.settle();
    EXPECT_EQ(host.window().namedSheet.has_value(), offersThem);
    EXPECT_EQ(host.tools.order(), offersThem ? QStringList{u"altool--list-providers"_s} : QStringList());
}

TEST_P(Help, listsNoProvidersWhenItIsCancelled)
{
    document().perform(GetParam().action);
    host.window().answerSheet(platform::alertSecondButton);
    host.settle();
    EXPECT_FALSE(host.window().namedSheet);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Sheets, Help, testing::ValuesIn(rows),
                         [](const auto &row) { return row.param.name; });
