// The registered defaults, and what a new document starts with.

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct DefaultRow {
    const char *key;
    QVariant value;
};

class RegisteredDefault : public testing::TestWithParam<DefaultRow> { };

const auto defaults =
    testing::Values(DefaultRow{"allowAppleEvents", true}, DefaultRow{"pollingDelay", 30.0},
                    DefaultRow{"dontClearLogEachTime", false}, DefaultRow{"dontSignEnclosures", false},
                    DefaultRow{"allowFrameworks", true}, DefaultRow{"prefCodesignDeep", false},
                    DefaultRow{"prefCodesignForce", true}, DefaultRow{"logFontSize", 12},
                    DefaultRow{"userInfoShowWhenActive", true}, DefaultRow{"detailedLogToFile", true},
                    DefaultRow{"prefDoPostCodesignCheck", false}, DefaultRow{"preferXcodeAltool", true},
                    DefaultRow{"prefRetryLimitFor239Failure", 1000}, DefaultRow{"toolPause", 0.15});

} // namespace

TEST_P(RegisteredDefault, countsUntilAValueIsStoredAndAgainWhenItIsRemoved)
{
    MemoryPreferences preferences;
    AppDelegate::initialize(preferences);
    const QString key = QString::fromLatin1(GetParam().key);
    EXPECT_EQ(preferences.value(key), GetParam().value);
    EXPECT_TRUE(preferences.stored().isEmpty()) << "a registered value is not stored";
    preferences.setValue(key, 77);
    EXPECT_EQ(preferences.value(key), 77);
    preferences.remove(key);
    EXPECT_EQ(preferences.value(key), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Keys, RegisteredDefault, defaults, [](const auto &row) { return row.param.key; });

TEST(Preferences, thirteenKeysAndThePauseOfThisHostHaveADefault)
{
    EXPECT_EQ(key::registeredDefaults().size(), 13 + 1);
}

namespace {

class KeyWithoutDefault : public testing::TestWithParam<const char *> { };

} // namespace

TEST_P(KeyWithoutDefault, readsAsNothing)
{
    MemoryPreferences preferences;
    AppDelegate::initialize(preferences);
    const QString key = QString::fromLatin1(GetParam());
    EXPECT_FALSE(preferences.value(key).isValid());
    EXPECT_FALSE(preferences.boolean(key));
    EXPECT_TRUE(preferences.string(key).isNull());
}

INSTANTIATE_TEST_SUITE_P(Keys, KeyWithoutDefault,
                         testing::Values("providerNameValue", "appleIDValue", "appPassValue",
                                         "lastUsedIdentity", "createDiskImage", "useDropDMGForImages",
                                         "dropDMGConfigName", "allowCalendars", "allowAudio", "allowCamera",
                                         "allowLocation", "allowPhotos", "allowAddressBook", "allowJITCode",
                                         "allowUnsignedExecMem", "allowDYLDEnvVariables",
                                         "disableMemProtection", "isDebuggingTool"),
                         [](const auto &row) { return std::string(row.param); });

// A new document

namespace {

struct CheckboxRow {
    const char *key;
    Checkbox DocumentControls::*checkbox;
    bool isOnAtFirst;
};

class DocumentCheckbox : public testing::TestWithParam<CheckboxRow> {
protected:
    const QString key = QString::fromLatin1(GetParam().key);
    bool isOn() { return (host.document().*GetParam().checkbox).isOn(); }

    TestHost host;
};

} // namespace

TEST_P(DocumentCheckbox, hasItsFactoryStateOnAFirstLaunch)
{
    host.launch();
    EXPECT_EQ(isOn(), GetParam().isOnAtFirst);
}

TEST_P(DocumentCheckbox, startsFromItsKey)
{
    host.preferences.setValue(key, !GetParam().isOnAtFirst);
    host.launch();
    EXPECT_EQ(isOn(), !GetParam().isOnAtFirst);
}

TEST_P(DocumentCheckbox, goesBackToTheFactoryStateInNewDocumentsAloneWhenTheKeyIsRemoved)
{
    host.preferences.setValue(key, !GetParam().isOnAtFirst);
    host.launch();
    const DocumentPtr open = host.application().allControllers().first();
    host.preferences.remove(key);
    host.application().newDocument(0);
    EXPECT_EQ(isOn(), GetParam().isOnAtFirst);
    EXPECT_EQ(((*open).*GetParam().checkbox).isOn(), !GetParam().isOnAtFirst);
}

TEST_P(DocumentCheckbox, readsWhatAPersonHasTypedIntoTheFile)
{
    host.preferences.setValue(key, u"YES"_s);
    host.launch();
    EXPECT_TRUE(isOn());
    host.preferences.setValue(key, u"no such word"_s);
    host.application().newDocument(0);
    EXPECT_FALSE(isOn());
}

INSTANTIATE_TEST_SUITE_P(
    Keys, DocumentCheckbox,
    testing::Values(
        CheckboxRow{"allowAppleEvents", &DocumentControls::eventsCheckbox, true},
        CheckboxRow{"allowCalendars", &DocumentControls::calendarsCheckbox, false},
        CheckboxRow{"allowAudio", &DocumentControls::audioCheckbox, false},
        CheckboxRow{"allowCamera", &DocumentControls::cameraCheckbox, false},
        CheckboxRow{"allowLocation", &DocumentControls::locationCheckbox, false},
        CheckboxRow{"allowPhotos", &DocumentControls::photosCheckbox, false},
        CheckboxRow{"allowAddressBook", &DocumentControls::addressBookCheckbox, false},
        CheckboxRow{"allowFrameworks", &DocumentControls::disableLibCheckbox, true},
        CheckboxRow{"allowJITCode", &DocumentControls::allowJITCheckbox, false},
        CheckboxRow{"allowUnsignedExecMem", &DocumentControls::allowUnsignedExecMemCheckbox, false},
        CheckboxRow{"allowDYLDEnvVariables", &DocumentControls::allowDYLDEnvCheckbox, false},
        CheckboxRow{"disableMemProtection", &DocumentControls::disableMemProtectionCheckbox, false},
        CheckboxRow{"isDebuggingTool", &DocumentControls::isDebugToolCheckbox, false},
        CheckboxRow{"dontClearLogEachTime", &DocumentControls::dontClearCheckbox, false},
        CheckboxRow{"dontSignEnclosures", &DocumentControls::dontSignEnclosuresCheckbox, false},
        CheckboxRow{"createDiskImage", &DocumentControls::createDiskImageCheckbox, false},
        CheckboxRow{"useDropDMGForImages", &DocumentControls::useDropDMGCheckbox, false}),
    [](const auto &row) { return row.param.key; });

namespace {

struct FieldRow {
    const char *key;
    TextField DocumentControls::*field;
};

class DocumentTextField : public testing::TestWithParam<FieldRow> {
protected:
    const QString key = QString::fromLatin1(GetParam().key);
    QString text() { return (host.document().*GetParam().field).stringValue(); }

    TestHost host;
};

} // namespace

TEST_P(DocumentTextField, startsFromItsKey)
{
    host.preferences.setValue(key, u"  some text "_s);
    host.launch();
    EXPECT_EQ(text(), u"  some text "_s);
}

TEST_P(DocumentTextField, isEmptyWithoutAValue)
{
    host.preferences.remove(key);
    host.launch();
    EXPECT_EQ(text(), u""_s);
}

TEST_P(DocumentTextField, staysEmptyWithAnEmptyValue)
{
    host.preferences.setValue(key, u""_s);
    host.launch();
    EXPECT_EQ(text(), u""_s);
}

TEST_P(DocumentTextField, ofAnOpenDocumentKeepsWhatItHolds)
{
    host.preferences.setValue(key, u"before"_s);
    host.launch();
    host.preferences.remove(key);
    EXPECT_EQ(text(), u"before"_s);
    host.application().newDocument(0);
    EXPECT_EQ(text(), u""_s);
}

INSTANTIATE_TEST_SUITE_P(Keys, DocumentTextField,
                         testing::Values(FieldRow{"providerNameValue", &DocumentControls::providerNameField},
                                         FieldRow{"appleIDValue", &DocumentControls::appleIDField},
                                         FieldRow{"appPassValue", &DocumentControls::appPassField}),
                         [](const auto &row) { return row.param.key; });

TEST(Preferences, aNewDocumentHasNoExtraEntitlements)
{
    TestHost host;
    host.launch();
    EXPECT_FALSE(host.document().extraEntitlementsButton.isOn());
    EXPECT_TRUE(host.document().extraEntitlementsURL().isEmpty());
}

TEST(Preferences, theRunnersPauseIsReadWhenARunnerIsMade)
{
    TestHost host;
    host.preferences.setValue(key::toolPause, u"no number"_s);
    host.launch();
    EXPECT_EQ(host.application().altoolVersionNumber(), 4u) << "a pause that is no number is none";
}
