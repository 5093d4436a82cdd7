// Saving what a document shows as the start of new documents.

#include "document/documentdefaults.h"
#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QStringList keysInOrder{
    u"providerNameValue"_s,    u"appleIDValue"_s,         u"lastUsedIdentity"_s,
    u"appPassValue"_s,         u"createDiskImage"_s,      u"useDropDMGForImages"_s,
    u"dropDMGConfigName"_s,    u"allowAppleEvents"_s,     u"allowCalendars"_s,
    u"allowAudio"_s,           u"allowCamera"_s,          u"allowLocation"_s,
    u"allowPhotos"_s,          u"allowAddressBook"_s,     u"allowFrameworks"_s,
    u"allowJITCode"_s,         u"allowUnsignedExecMem"_s, u"allowDYLDEnvVariables"_s,
    u"disableMemProtection"_s, u"isDebuggingTool"_s,      u"dontClearLogEachTime"_s,
    u"dontSignEnclosures"_s,
};

class SetDocumentDefaults : public testing::Test {
protected:
    SetDocumentDefaults()
    {
        host.launch();
        host.preferences.takeChanges();
    }

    MainWinController &document() { return host.document(); }
    QVariant stored(const char *key) { return host.preferences.stored().value(QString::fromLatin1(key)); }
    void set()
    {
        document().doSetDocumentDefaults();
        host.window().answerSheet(platform::alertFirstButton);
    }

    TestHost host;
};

struct CheckboxRow {
    const char *key;
    Checkbox DocumentControls::*checkbox;
};

class SavedCheckbox : public SetDocumentDefaults, public testing::WithParamInterface<CheckboxRow> {
protected:
    Checkbox &checkbox() { return document().*GetParam().checkbox; }
};

struct FieldRow {
    const char *key;
    TextField DocumentControls::*field;
};

class SavedText : public SetDocumentDefaults, public testing::WithParamInterface<FieldRow> {
protected:
    TextField &field() { return document().*GetParam().field; }
};

struct PopupRow {
    const char *key;
    Popup DocumentControls::*popup;
};

class SavedTitle : public SetDocumentDefaults, public testing::WithParamInterface<PopupRow> {
protected:
    Popup &popup() { return document().*GetParam().popup; }
};

} // namespace

TEST(DocumentDefaults, areTheseInThisOrder)
{
    QStringList keys;
    for (const DocumentDefault &documentDefault : documentDefaults())
        keys.append(documentDefault.key);
    EXPECT_EQ(keys, keysInOrder);
}

// The question

TEST_F(SetDocumentDefaults, asksInASheet)
{
    document().perform(Action::doSetDocumentDefaults);
    ASSERT_TRUE(host.window().sheet);
    const platform::Alert alert = host.window().sheet->alert;
    EXPECT_EQ(alert.messageText, u"Set New Document Defaults"_s);
    EXPECT_EQ(
        alert.informativeText,
        u"Click Set if you want the values, settings and entitlements in this document saved and used in newly created documents. This includes any entered Apple ID, app-specific password, and provider short name."_s);
    EXPECT_EQ(alert.buttons, (QStringList{u"Set"_s, u"Cancel"_s}));
    EXPECT_TRUE(host.applicationHost.modalAlerts.isEmpty()) << "the rest of the application goes on";
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_EQ(host.application().statusString(), u"ready"_s) << "it is the document that asks";
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty()) << "nothing before the answer";
}

TEST_F(SetDocumentDefaults, writesAllKeysInTheirOrder)
{
    set();
    EXPECT_EQ(host.preferences.takeChanges(), keysInOrder);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(SetDocumentDefaults, writesNothingWhenCancelled)
{
    document().doSetDocumentDefaults();
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(SetDocumentDefaults, writesWhatIsThereWhenTheSheetEnds)
{
    document().doSetDocumentDefaults();
    document().appleIDField.setStringValue(u"late@example.com"_s);
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_EQ(stored("appleIDValue"), u"late@example.com"_s);
}

// What is written

TEST_P(SavedCheckbox, isWrittenByItsState)
{
    for (const bool isOn : {true, false}) {
        checkbox().setState(isOn ? 1 : 0);
        set();
        EXPECT_EQ(stored(GetParam().key), QVariant(isOn));
    }
}

TEST_P(SavedCheckbox, isHowANewDocumentStarts)
{
    const int other = checkbox().isOn() ? 0 : 1;
    checkbox().setState(other);
    set();
    host.application().newDocument(0);
    EXPECT_EQ(checkbox().state(), other);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, SavedCheckbox,
    testing::Values(CheckboxRow{"createDiskImage", &DocumentControls::createDiskImageCheckbox},
                    CheckboxRow{"useDropDMGForImages", &DocumentControls::useDropDMGCheckbox},
                    CheckboxRow{"allowAppleEvents", &DocumentControls::eventsCheckbox},
                    CheckboxRow{"allowCalendars", &DocumentControls::calendarsCheckbox},
                    CheckboxRow{"allowAudio", &DocumentControls::audioCheckbox},
                    CheckboxRow{"allowCamera", &DocumentControls::cameraCheckbox},
                    CheckboxRow{"allowLocation", &DocumentControls::locationCheckbox},
                    CheckboxRow{"allowPhotos", &DocumentControls::photosCheckbox},
                    CheckboxRow{"allowAddressBook", &DocumentControls::addressBookCheckbox},
                    CheckboxRow{"allowFrameworks", &DocumentControls::disableLibCheckbox},
                    CheckboxRow{"allowJITCode", &DocumentControls::allowJITCheckbox},
                    CheckboxRow{"allowUnsignedExecMem", &DocumentControls::allowUnsignedExecMemCheckbox},
                    CheckboxRow{"allowDYLDEnvVariables", &DocumentControls::allowDYLDEnvCheckbox},
                    CheckboxRow{"disableMemProtection", &DocumentControls::disableMemProtectionCheckbox},
                    CheckboxRow{"isDebuggingTool", &DocumentControls::isDebugToolCheckbox},
                    CheckboxRow{"dontClearLogEachTime", &DocumentControls::dontClearCheckbox},
                    CheckboxRow{"dontSignEnclosures", &DocumentControls::dontSignEnclosuresCheckbox}),
    [](const auto &row) { return row.param.key; });

TEST_P(SavedText, isWrittenAsItStands)
{
    field().setStringValue(u" some text "_s);
    set();
    EXPECT_EQ(stored(GetParam().key), u" some text "_s);
    host.application().newDocument(0);
    EXPECT_EQ(field().stringValue(), u" some text "_s);
}

TEST_P(SavedText, isWrittenAsAnEmptyTextIfThereIsNone)
{
    field().setStringValue(u"before"_s);
    set();
    for (const QString &none : {u""_s, QString()}) {
        field().setStringValue(none);
        set();
        EXPECT_TRUE(stored(GetParam().key).isValid());
        EXPECT_FALSE(stored(GetParam().key).toString().isNull());
        EXPECT_EQ(stored(GetParam().key), u""_s);
    }
    host.application().newDocument(0);
    EXPECT_EQ(field().stringValue(), u""_s);
}

INSTANTIATE_TEST_SUITE_P(Keys, SavedText,
                         testing::Values(FieldRow{"providerNameValue", &DocumentControls::providerNameField},
                                         FieldRow{"appleIDValue", &DocumentControls::appleIDField},
                                         FieldRow{"appPassValue", &DocumentControls::appPassField}),
                         [](const auto &row) { return row.param.key; });

TEST_P(SavedTitle, isWrittenAsTheSelectedItemsTitle)
{
    popup().setItemTitles({u"One"_s, u"Two"_s});
    popup().selectItemWithTitle(u"Two"_s);
    set();
    EXPECT_EQ(stored(GetParam().key), u"Two"_s);
}

TEST_P(SavedTitle, isWrittenAsAnEmptyTextForAnEmptyPopup)
{
    popup().setItemTitles({});
    set();
    EXPECT_TRUE(stored(GetParam().key).isValid());
    EXPECT_FALSE(stored(GetParam().key).toString().isNull());
    EXPECT_EQ(stored(GetParam().key), u""_s);
}

INSTANTIATE_TEST_SUITE_P(Keys, SavedTitle,
                         testing::Values(PopupRow{"lastUsedIdentity", &DocumentControls::identitiesPopup},
                                         PopupRow{"dropDMGConfigName",
                                                  &DocumentControls::dropDMGConfigsPopup}),
                         [](const auto &row) { return row.param.key; });

TEST(DocumentDefaults, placeholdersAreWrittenAndHarmNobody)
{
    TestHost host;
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    host.workspace.installed.insert(u"com.c-command.DropDMG"_s, u"/Applications/DropDMG.app"_s);
    host.launch();
    host.document().doSetDocumentDefaults();
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_EQ(host.preferences.string(key::lastUsedIdentity), u"No Developer ID identities found"_s);
    EXPECT_EQ(host.preferences.string(key::dropDMGConfigName), u"None found"_s);
    host.application().identities.set({u"One"_s, u"Two"_s});
    host.application().dropDMGConfigNames.set({u"Plain"_s, u"Fancy"_s});
    host.application().newDocument(0);
    EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), u"One"_s);
    EXPECT_EQ(host.document().dropDMGConfigsPopup.titleOfSelectedItem(), u"Plain"_s);
}

TEST_F(SetDocumentDefaults, leavesDocumentsThatAreOpenAsTheyAre)
{
    const DocumentPtr open = host.application().allControllers().first();
    open->appleIDField.setStringValue(u"first@example.com"_s);
    open->cameraCheckbox.setState(0);
    host.application().newDocument(0);
    document().appleIDField.setStringValue(u"second@example.com"_s);
    document().cameraCheckbox.setState(1);
    set();
    EXPECT_EQ(open->appleIDField.stringValue(), u"first@example.com"_s);
    EXPECT_FALSE(open->cameraCheckbox.isOn());
}
