// The dictionary of a run, from the settings and the extra file, and the file that it is written to.

#include "app/preferencekeys.h"
#include "document/entitlementswitches.h"
#include "platform/itempath.h"
#include "platform/propertylist/propertylist.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

const QString jitKey = u"com.apple.security.cs.allow-jit"_s;

QList<Checkbox *> allSettings(DocumentControls &controls)
{
    return {&controls.eventsCheckbox,       &controls.disableLibCheckbox,
            &controls.audioCheckbox,        &controls.cameraCheckbox,
            &controls.locationCheckbox,     &controls.addressBookCheckbox,
            &controls.calendarsCheckbox,    &controls.photosCheckbox,
            &controls.allowJITCheckbox,     &controls.allowUnsignedExecMemCheckbox,
            &controls.allowDYLDEnvCheckbox, &controls.disableMemProtectionCheckbox,
            &controls.isDebugToolCheckbox};
}

struct SettingRow {
    const char *situation;
    Checkbox DocumentControls::*setting;
    const char *key;
};

} // namespace

class EntitlementSetting : public testing::TestWithParam<SettingRow> { };

TEST_P(EntitlementSetting, thatIsOnPutsItsKeyIn)
{
    DocumentControls controls;
    (controls.*GetParam().setting).setState(1);
    EXPECT_EQ(entitlementsFromSettings(controls), (QVariantMap{{QString::fromLatin1(GetParam().key), true}}));
}

INSTANTIATE_TEST_SUITE_P(
    Thirteen, EntitlementSetting,
    testing::Values(
        SettingRow{"events", &DocumentControls::eventsCheckbox, "com.apple.security.automation.apple-events"},
        SettingRow{"libraries", &DocumentControls::disableLibCheckbox,
                   "com.apple.security.cs.disable-library-validation"},
        SettingRow{"audio", &DocumentControls::audioCheckbox, "com.apple.security.device.audio-input"},
        SettingRow{"camera", &DocumentControls::cameraCheckbox, "com.apple.security.device.camera"},
        SettingRow{"location", &DocumentControls::locationCheckbox,
                   "com.apple.security.personal-information.location"},
        SettingRow{"addressBook", &DocumentControls::addressBookCheckbox,
                   "com.apple.security.personal-information.addressbook"},
        SettingRow{"calendars", &DocumentControls::calendarsCheckbox,
                   "com.apple.security.personal-information.calendars"},
        SettingRow{"photos", &DocumentControls::photosCheckbox,
                   "com.apple.security.personal-information.photos-library"},
        SettingRow{"jit", &DocumentControls::allowJITCheckbox, "com.apple.security.cs.allow-jit"},
        SettingRow{"unsignedMemory", &DocumentControls::allowUnsignedExecMemCheckbox,
                   "com.apple.security.cs.allow-unsigned-executable-memory"},
        SettingRow{"linkerVariables", &DocumentControls::allowDYLDEnvCheckbox,
                   "com.apple.security.cs.allow-dyld-environment-variables"},
        SettingRow{"memoryProtection", &DocumentControls::disableMemProtectionCheckbox,
                   "com.apple.security.cs.disable-executable-page-protection"},
        SettingRow{"debugger", &DocumentControls::isDebugToolCheckbox, "com.apple.security.cs.debugger"}),
    [](const auto &row) { return row.param.situation; });

class EntitlementsTest : public StepTest {
protected:
    EntitlementsTest()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.launch();
        isLaunched = true;
    }

    void turnAll(int state)
    {
        for (Checkbox *setting : allSettings(document()))
            setting->setState(state);
    }

    void chooseExtra(const QByteArray &bytes, const QString &name = u"Extra.plist"_s)
    {
        items::makeFile(host.item(name), bytes);
        document().extraEntitlementsURL.set(itempath::toUrl(host.item(name)));
    }

    static QByteArray dictionary(const QByteArray &entries)
    {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
    }

    /// The dictionary in that file of the items' folder.
    QVariant saved(const QString &file) const
    {
        return platform::propertyListFromData(host.text(file).toUtf8()).valueOr({});
    }

    QVariantMap assembled()
    {
        const auto entitlements = steps().entitlements.assembleEntitlements();
        EXPECT_TRUE(entitlements);
        return entitlements.value_or(QVariantMap{{u"none"_s, true}});
    }
};

TEST_F(EntitlementsTest, allThirteenSettingsGiveThirteenKeys)
{
    turnAll(1);
    EXPECT_EQ(assembled().size(), 13);
    for (const QVariant &value : assembled())
        EXPECT_EQ(value, QVariant(true));
}

TEST_F(EntitlementsTest, withEverythingOffAnEmptyDictionaryIsWrittenAndSignedWith)
{
    turnAll(0);
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(saved(u"Foo - Notarized/Entitlements.plist"_s), QVariant(QVariantMap()));
    const QStringList line = host.tools.callsOf(u"codesign"_s).value(0);
    EXPECT_EQ(line.value(line.indexOf(u"--entitlements"_s) + 1),
              host.item(u"Foo - Working/Entitlements.plist"_s));
}

TEST_F(EntitlementsTest, theFileIsAnXmlPropertyList)
{
    turnAll(0);
    document().allowJITCheckbox.setState(1);
    makeWorkingCopy(u"Foo.app"_s);
    ASSERT_TRUE(run([&] { return steps().entitlements.saveEntitlementsDictionary({{jitKey, true}}); }));
    EXPECT_EQ(
        host.text(u"Foo - Working/Entitlements.plist"_s),
        u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n<dict>\n\t<key>com.apple.security.cs.allow-jit</key>\n\t<true/>\n</dict>\n</plist>\n"_s);
}

TEST_F(EntitlementsTest, theExtraFileTurnsASettingOff)
{
    turnAll(0);
    document().allowJITCheckbox.setState(1);
    chooseExtra(dictionary("<key>com.apple.security.cs.allow-jit</key><false/>"));
    EXPECT_EQ(assembled(), (QVariantMap{{jitKey, false}}));
}

TEST_F(EntitlementsTest, theExtraFileAddsWhateverItHolds)
{
    turnAll(0);
    document().cameraCheckbox.setState(1);
    chooseExtra(dictionary("<key>groups</key><array><string>a</string><integer>7</integer></array>"
                           "<key>name</key><string>Ümlaut &amp; more</string>"));
    EXPECT_EQ(assembled(),
              (QVariantMap{{u"com.apple.security.device.camera"_s, true},
                           {u"groups"_s, QVariantList{u"a"_s, qlonglong(7)}},
                           {u"name"_s, u"Ümlaut & more"_s}}));
}

TEST_F(EntitlementsTest, theExtraFileMayHaveEachFormOfPropertyList)
{
    turnAll(0);
    chooseExtra("{ a = yes; }");
    EXPECT_EQ(assembled(), (QVariantMap{{u"a"_s, u"yes"_s}}));
    const QByteArray binary(
        "bplist00\xd1\x01\x02\x51\x61\x09\x08\x0b\x0d\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\3\0\0\0\0\0"
        "\0\0\0\0\0\0\0\0\0\0\x0e",
        8 + 6 + 3 + 32);
    chooseExtra(binary);
    EXPECT_EQ(assembled(), (QVariantMap{{u"a"_s, true}}));
}

TEST_F(EntitlementsTest, theExtraFileIsReadAnewForEachRun)
{
    turnAll(0);
    chooseExtra(dictionary("<key>a</key><true/>"));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(saved(u"Foo - Notarized/Entitlements.plist"_s), QVariant(QVariantMap{{u"a"_s, true}}));

    host.window().answerSheet();
    items::makeBundle(host.item(u"Foo.app"_s));
    chooseExtra(dictionary("<key>b</key><true/>"));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(saved(u"Foo - Notarized/Entitlements.plist"_s), QVariant(QVariantMap{{u"b"_s, true}}));

    host.window().answerSheet();
    items::makeBundle(host.item(u"Foo.app"_s));
    ASSERT_TRUE(QFile::rename(host.item(u"Extra.plist"_s), host.item(u"Moved.plist"_s)));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Cannot Read Extra Entitlements"_s);
}

TEST_F(EntitlementsTest, theLogTellsThemWithoutAFile)
{
    makeWorkingCopy(u"Foo.app"_s);
    document().loggingToFile.set(false); // the open log decides
    ASSERT_TRUE(run([&] { return steps().entitlements.saveEntitlementsDictionary({{u"a"_s, u"b"_s}}); }));
    EXPECT_TRUE(host.text(u"Foo - Working/Submission Log.txt"_s)
                    .endsWith(u"14:03:22.123: Entitlements: {\n    a = b;\n}\n"_s))
        << host.text(u"Foo - Working/Submission Log.txt"_s).toStdString();
}

TEST_F(EntitlementsTest, theLogNamesTheExtraFileByItsPath)
{
    chooseExtra(dictionary(""), u"My Extra.plist"_s);
    makeWorkingCopy(u"Foo.app"_s);
    ASSERT_TRUE(run([&] { return steps().entitlements.saveEntitlementsDictionary({{u"a"_s, u"%2"_s}}); }));
    EXPECT_TRUE(
        host.text(u"Foo - Working/Submission Log.txt"_s)
            .endsWith(u"Entitlements, including those in the file '%1': {\n    a = \"%2\";\n}\n"_s.replace(
                u"%1"_s, host.item(u"My Extra.plist"_s))))
        << host.text(u"Foo - Working/Submission Log.txt"_s).toStdString();
}

TEST_F(EntitlementsTest, withoutALogNothingIsTold)
{
    host.preferences.setValue(key::detailedLogToFile, false);
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Notarized"_s),
              (QStringList{u"Entitlements.plist"_s, u"Foo - Unmodified Original"_s, u"Foo.app"_s,
                           u"RequestUUID.txt"_s}));
}

TEST_F(EntitlementsTest, theFileStaysInTheFolderOfAFailedRun)
{
    host.tools.answer(u"codesign"_s, {.status = 1});
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_TRUE(host.listing(u"Foo - Failed"_s).contains(u"Entitlements.plist"_s));
}
