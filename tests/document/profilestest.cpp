// Sets of credentials, identity, entitlements and options under a name.

#include "document/profiles.h"

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/items.h"
#include "support/testhost.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Profiles : public testing::Test {
protected:
    Profiles() { host.launch(); }

    MainWinController &document() { return host.document(); }
    ProfileStore store() { return {host.files, host.configuration.profilesFolder}; }

    TestHost host;
};

} // namespace

TEST_F(Profiles, keepAllThatADocumentIsSetTo)
{
    MainWinController &first = document();
    first.appleIDField.setStringValue(u"release@example.com"_s);
    first.providerNameField.setStringValue(u"Team"_s);
    first.cameraCheckbox.setState(1);
    first.disableLibCheckbox.setState(0);
    first.useDiskImage.set(true);
    first.skipPaths.set({u"Contents/Helper"_s});
    first.extraEntitlementsURL.set(QUrl::fromLocalFile(u"/x/extra.plist"_s));
    ASSERT_TRUE(store().save(u"Product"_s, profiles::profileOf(first)));
    const DocumentPtr other = host.application().addedDocument();
    ASSERT_TRUE(profiles::use(*other, u"Product"_s));
    EXPECT_EQ(profiles::profileOf(*other), profiles::profileOf(first));
    EXPECT_EQ(other->appleIDField.stringValue(), u"release@example.com"_s);
    EXPECT_TRUE(other->cameraCheckbox.isOn());
    EXPECT_FALSE(other->disableLibCheckbox.isOn());
    EXPECT_TRUE(other->createDiskImageCheckbox.isOn());
    EXPECT_EQ(other->skipPaths(), QStringList{u"Contents/Helper"_s});
    EXPECT_EQ(other->profile(), u"Product"_s);
    EXPECT_TRUE(first.profile().isEmpty());
}

TEST_F(Profiles, areFilesThatCanBeSharedAndHaveNoSecret)
{
    ASSERT_TRUE(store().save(u"Product"_s, profiles::profileOf(document())));
    const QByteArray text = host.files.readFile(store().path(u"Product"_s)).valueOr({});
    const QJsonObject form = QJsonDocument::fromJson(text).object();
    EXPECT_EQ(form.value(u"sealwrightProfile"_s).toInt(), 1);
    EXPECT_EQ(form.value(key::appPassValue).toString(), u"notary"_s) << "the name of the item and no more";
    EXPECT_EQ(form.value(key::allowAppleEvents), QJsonValue(true));
}

TEST_F(Profiles, leaveAloneWhatTheyDoNotMention)
{
    document().cameraCheckbox.setState(1);
    ASSERT_TRUE(profiles::apply(document(), {{key::appleIDValue, u"a@example.com"_s}}));
    EXPECT_TRUE(document().cameraCheckbox.isOn());
    EXPECT_EQ(document().appPassField.stringValue(), u"notary"_s);
    EXPECT_EQ(document().identitiesPopup.titleOfSelectedItem(), u"Example Corp (A1B2C3D4E5)"_s);
}

TEST_F(Profiles, changeNothingWhereTheirIdentityIsMissing)
{
    const Profile before = profiles::profileOf(document());
    const auto applied = profiles::apply(
        document(),
        {{key::appleIDValue, u"a@example.com"_s}, {key::lastUsedIdentity, u"Other (Z9Z9Z9Z9Z9)"_s}});
    ASSERT_FALSE(applied);
    EXPECT_EQ(applied.error(), u"The keychain has no identity “Other (Z9Z9Z9Z9Z9)”."_s);
    EXPECT_EQ(profiles::profileOf(document()), before);
}

TEST_F(Profiles, thatAreNoneAreNamed)
{
    EXPECT_EQ(profiles::use(document(), u"Nobody"_s).error(), u"There is no profile “Nobody”."_s);
    EXPECT_EQ(profiles::use(document(), u"../x"_s).error(), u"There is no profile “../x”."_s);
    items::makeFile(store().path(u"Broken"_s), "{}");
    const QString error = profiles::use(document(), u"Broken"_s).error();
    EXPECT_TRUE(error.endsWith(u"Broken.json: this is no profile of Sealwright"_s)) << error.toStdString();
}

TEST_F(Profiles, takeNoValueOfAnotherType)
{
    const auto profile = profiles::profileIn(
        R"({"sealwrightProfile": 1, "appleIDValue": 5, "allowCamera": "yes", "unknown": true, "skipPaths": "x",
            "allowAudio": true})");
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->keys(), QStringList{key::allowAudio});
}

TEST_F(Profiles, readNothingThatIsTooLongOrNoProfile)
{
    for (const QByteArray &text :
         {QByteArray(), QByteArray("[]"), QByteArray("{\"sealwrightProfile\": 2}"),
          "{\"sealwrightProfile\": 1, \"appleIDValue\": \"" + QByteArray(300'000, 'x') + "\"}"})
        EXPECT_FALSE(profiles::profileIn(text));
}

TEST_F(Profiles, haveNamesThatFilesCanHave)
{
    for (const QString &name : {u""_s, u"a/b"_s, u".hidden"_s, QString(101, u'x')})
        EXPECT_FALSE(store().save(name, {})) << name.toStdString();
    ASSERT_TRUE(store().save(u"b"_s, {}));
    ASSERT_TRUE(store().save(u"A & B 2"_s, {}));
    EXPECT_EQ(store().names(), (QStringList{u"A & B 2"_s, u"b"_s}));
    ASSERT_TRUE(store().remove(u"b"_s));
    EXPECT_EQ(host.files.trashed, QStringList{store().path(u"b"_s)});
    EXPECT_FALSE(store().remove(u"b"_s));
}
