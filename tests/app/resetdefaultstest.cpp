// Bringing the start of new documents back to the factory state.

#include "document/documentdefaults.h"
#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The keys of the document defaults, in their order.
QStringList documentDefaultKeys()
{
    QStringList keys;
    for (const DocumentDefault &documentDefault : documentDefaults())
        keys.append(documentDefault.key);
    return keys;
}

const QStringList keysOfTheApplication{
    u"pollingDelay"_s,
    u"prefCodesignDeep"_s,
    u"prefCodesignForce"_s,
    u"logFontSize"_s,
    u"userInfoShowWhenActive"_s,
    u"detailedLogToFile"_s,
    u"prefDoPostCodesignCheck"_s,
    u"preferXcodeAltool"_s,
    u"prefRetryLimitFor239Failure"_s,
};

class ResetDocumentDefaults : public testing::Test {
protected:
    ResetDocumentDefaults()
    {
        host.launch();
        for (const QString &key : documentDefaultKeys() + keysOfTheApplication)
            host.preferences.setValue(key, 77);
        host.preferences.takeChanges();
    }

    void answerWith(int answer)
    {
        host.applicationHost.answerModal = [answer] { return answer; };
        host.application().doResetDocumentDefaults();
    }

    TestHost host;
};

} // namespace

TEST_F(ResetDocumentDefaults, asksInAnAlertThatHoldsUpTheApplication)
{
    QString statusWhileAsking;
    host.applicationHost.answerModal = [&] {
        statusWhileAsking = host.application().statusString();
        EXPECT_EQ(host.applicationHost.beeps, 1);
        EXPECT_TRUE(host.preferences.takeChanges().isEmpty()) << "nothing before the answer";
        return platform::alertSecondButton;
    };
    host.application().doResetDocumentDefaults();
    ASSERT_EQ(host.applicationHost.modalAlerts.size(), 1);
    const platform::Alert alert = host.applicationHost.modalAlerts.first();
    EXPECT_EQ(alert.messageText, u"Reset Document Defaults"_s);
    EXPECT_EQ(
        alert.informativeText,
        u"Click Reset if you want the values, settings and entitlements used for newly created documents reset to their factory values. The Apple ID, app-specific password, and provider short name will be set to empty values."_s);
    EXPECT_EQ(alert.buttons, (QStringList{u"Reset"_s, u"Cancel"_s}));
    EXPECT_EQ(statusWhileAsking, u"interacting"_s);
    EXPECT_TRUE(host.window().sheets.isEmpty()) << "it belongs to no document";
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(ResetDocumentDefaults, removesTheKeysInTheirOrderAndNoOther)
{
    answerWith(platform::alertFirstButton);
    EXPECT_EQ(host.preferences.takeChanges(), documentDefaultKeys());
    for (const QString &key : documentDefaultKeys())
        EXPECT_FALSE(host.preferences.stored().contains(key)) << key.toStdString();
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

TEST_F(ResetDocumentDefaults, leavesTheKeysAloneThatAreNoDocumentsStart)
{
    answerWith(platform::alertFirstButton);
    for (const QString &key : keysOfTheApplication)
        EXPECT_EQ(host.preferences.stored().value(key), 77) << key.toStdString();
}

TEST_F(ResetDocumentDefaults, writesNothingWhenCancelled)
{
    answerWith(platform::alertSecondButton);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

TEST_F(ResetDocumentDefaults, needsNoDocument)
{
    host.window().performClose();
    answerWith(platform::alertFirstButton);
    EXPECT_EQ(host.preferences.takeChanges(), documentDefaultKeys());
}

TEST_F(ResetDocumentDefaults, givesNewDocumentsTheFactoryStateAndLeavesOpenOnesAlone)
{
    host.preferences.setValue(u"appleIDValue"_s, u"dev@example.com"_s);
    for (const QString &key : {u"allowCamera"_s, u"createDiskImage"_s, u"dontSignEnclosures"_s})
        host.preferences.setValue(key, true);
    host.preferences.setValue(u"allowAppleEvents"_s, false);
    host.preferences.setValue(u"allowFrameworks"_s, false);
    host.application().newDocument(0);
    MainWinController &open = host.document();
    answerWith(platform::alertFirstButton);
    host.application().newDocument(0);
    MainWinController &added = host.document();
    EXPECT_EQ(added.appleIDField.stringValue(), u""_s);
    EXPECT_EQ(open.appleIDField.stringValue(), u"dev@example.com"_s);
    for (Checkbox DocumentControls::*checkbox :
         {&DocumentControls::cameraCheckbox, &DocumentControls::createDiskImageCheckbox,
          &DocumentControls::dontSignEnclosuresCheckbox}) {
        EXPECT_FALSE((added.*checkbox).isOn());
        EXPECT_TRUE((open.*checkbox).isOn());
    }
    for (Checkbox DocumentControls::*checkbox :
         {&DocumentControls::eventsCheckbox, &DocumentControls::disableLibCheckbox}) {
        EXPECT_TRUE((added.*checkbox).isOn());
        EXPECT_FALSE((open.*checkbox).isOn());
    }
}
