// A document's properties that take only some values: the identity, the extra entitlements and DropDMG.

#include "dbus/scriptedproperties.h"
#include "document/applicationinterface.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

// The identity

class DocumentIdentity : public DocumentProperties {
protected:
    DocumentIdentity() { host.document().identitiesPopup.setItemTitles({u"Jane (AAAA)"_s, u"Joe (BBBB)"_s}); }
    QVariant identity() { return get(u"ActiveIdentity"_s); }
};

TEST_F(DocumentIdentity, isTheTitleOfThePopup)
{
    EXPECT_EQ(identity(), QVariant(u"Jane (AAAA)"_s));
    expectTaken(u"ActiveIdentity"_s, u"Joe (BBBB)"_s);
    EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), u"Joe (BBBB)"_s);
    EXPECT_EQ(identity(), QVariant(u"Joe (BBBB)"_s));
}

TEST_F(DocumentIdentity, isWrongWhenItIsNotATitleExactlyOrNotThere)
{
    for (const QVariant &value : {QVariant(u"Developer ID Application: Joe (BBBB)"_s),
                                  QVariant(u"joe (BBBB)"_s), QVariant(u""_s), nothing})
        EXPECT_EQ(failureOf(set(u"ActiveIdentity"_s, value)), u"N6 "_s);
    EXPECT_EQ(errorOf(set(u"ActiveIdentity"_s, 1)), buserror::invalidArgs);
    EXPECT_EQ(identity(), QVariant(u"Jane (AAAA)"_s));
}

TEST_F(DocumentIdentity, isNothingWithoutIdentitiesAndTheWordsForThatCannotBeChosen)
{
    host.document().identitiesPopup.setItemTitles({noIdentitiesPlaceholder.toString()});
    EXPECT_TRUE(isNoValue(identity()));
    EXPECT_EQ(failureOf(set(u"ActiveIdentity"_s, noIdentitiesPlaceholder.toString())), u"N6 "_s);
}

TEST_F(DocumentIdentity, isNotSetWhileTheDocumentIsBusy)
{
    host.document().changeStatus(status::waiting);
    expectBusy(u"ActiveIdentity"_s, u"Joe (BBBB)"_s);
    expectBusy(u"ActiveIdentity"_s, u"Nobody"_s);
    EXPECT_EQ(identity(), QVariant(u"Jane (AAAA)"_s));
}

// The extra entitlements

class DocumentEntitlements : public DocumentProperties {
protected:
    QString write(const QVariant &value) { return failureOf(set(u"ExtraEntitlements"_s, value)); }
    QVariant read() { return get(u"ExtraEntitlements"_s); }
};

TEST_F(DocumentEntitlements, ofAPropertyListAreStoredAndReportedAsWrongAllTheSame)
{
    EXPECT_TRUE(isNoValue(read()));
    for (const QString &file : {u"file:///no/such/My%20File.plist"_s, u"file:///no/such/My.PLIST"_s}) {
        EXPECT_EQ(write(file), u"N6 "_s);
        EXPECT_EQ(read(), QVariant(file));
    }
    EXPECT_EQ(host.document().extraEntitlementsURL().toLocalFile(), u"/no/such/My.PLIST"_s);
    EXPECT_EQ(host.document().extraEntitlementsButton.state(), 0);
}

TEST_F(DocumentEntitlements, ofAnythingElseAreWrongAndLeaveTheOldOnes)
{
    const QString old = u"file:///a/old.plist"_s;
    static_cast<void>(write(old));
    for (const QVariant &value :
         {QVariant(u"file:///a/new.txt"_s), QVariant(u"/a/new.plist"_s), QVariant(u"new.plist"_s),
          QVariant(u"https://example.com/new.plist"_s), QVariant(u"file:///a/plist"_s), QVariant(u""_s),
          QVariant(7), QVariant(QStringList{u"file:///a/new.plist"_s}), nothing}) {
        EXPECT_EQ(write(value), u"N6 "_s);
        EXPECT_EQ(read(), QVariant(old));
    }
}

TEST_F(DocumentEntitlements, areStoredWhileTheDocumentIsBusy)
{
    host.document().changeStatus(status::waiting);
    EXPECT_EQ(write(u"file:///a/new.plist"_s), u"N6 "_s);
    EXPECT_EQ(read(), QVariant(u"file:///a/new.plist"_s));
}

TEST_F(DocumentEntitlements, ofANewDocumentAreStoredThoughItsMakingIsAnError)
{
    EXPECT_EQ(failureOf(makeDocument({{u"ExtraEntitlements"_s, u"file:///a/new.plist"_s}})), u"N6 "_s);
    EXPECT_EQ(host.application().allControllers().size(), 2);
    EXPECT_EQ(read(), QVariant(u"file:///a/new.plist"_s));
}

// Disk images

TEST_F(DocumentProperties, aDiskImageIsWantedAtAnyTime)
{
    host.document().changeStatus(status::waiting);
    for (const bool value : {true, false}) {
        expectTaken(u"CreateDMG"_s, value);
        EXPECT_EQ(host.document().useDiskImage(), value);
        EXPECT_EQ(host.document().createDiskImageCheckbox.isOn(), value);
        EXPECT_EQ(get(u"CreateDMG"_s), QVariant(value));
    }
    for (const QVariant &value : {QVariant(1), nothing})
        EXPECT_EQ(errorOf(set(u"CreateDMG"_s, value)), buserror::invalidArgs);
}

TEST_F(DocumentProperties, dropDMGIsWantedAtAnyTimeWhereItIs)
{
    host.application().hasDropDMG.set(true);
    host.document().changeStatus(status::waiting);
    for (const bool value : {true, false}) {
        expectTaken(u"UseDropDMG"_s, value);
        EXPECT_EQ(host.document().useDropDMG(), value);
        EXPECT_EQ(host.document().useDropDMGCheckbox.isOn(), value);
        EXPECT_EQ(get(u"UseDropDMG"_s), QVariant(value));
    }
    EXPECT_EQ(errorOf(set(u"UseDropDMG"_s, 1)), buserror::invalidArgs);
}

TEST_F(DocumentProperties, withoutDropDMGOnlyItsPreferenceIsTurnedOff)
{
    for (const bool before : {false, true}) {
        host.preferences.setValue(key::useDropDMGForImages, true);
        host.document().useDropDMG.set(before);
        host.preferences.takeChanges();
        EXPECT_EQ(failureOf(set(u"UseDropDMG"_s, true)), u"N1202 DropDMG.app is not installed."_s);
        EXPECT_EQ(host.preferences.takeChanges(), QStringList{key::useDropDMGForImages});
        EXPECT_FALSE(host.preferences.boolean(key::useDropDMGForImages));
        EXPECT_EQ(ofApplication(u"UseDropDMG"_s), QVariant(false));
        EXPECT_EQ(get(u"UseDropDMG"_s), QVariant(before));
    }
}

TEST_F(DocumentProperties, withoutDropDMGItCanAlwaysBeTurnedOff)
{
    host.document().useDropDMG.set(true);
    expectTaken(u"UseDropDMG"_s, false);
    EXPECT_FALSE(host.document().useDropDMG());
}

class DocumentConfiguration : public DocumentProperties {
protected:
    DocumentConfiguration()
    {
        host.application().hasDropDMG.set(true);
        host.application().dropDMGConfigNames.set({u"Plain"_s, u"Fancy"_s});
        EXPECT_EQ(configuration(), QVariant(u"Plain"_s));
    }
    QVariant configuration() { return get(u"DropDMGConfig"_s); }
    const QString unavailable = u"N1203 No such DropDMG configuration available."_s;
};

TEST_F(DocumentConfiguration, isAnyKnownOneAtAnyTime)
{
    host.document().changeStatus(status::waiting);
    expectTaken(u"DropDMGConfig"_s, u"Fancy"_s);
    EXPECT_EQ(host.document().dropDMGConfigsPopup.titleOfSelectedItem(), u"Fancy"_s);
    EXPECT_EQ(host.document().dropDMGConfiguration(), u"Fancy"_s);
    EXPECT_EQ(configuration(), QVariant(u"Fancy"_s));
}

TEST_F(DocumentConfiguration, isUnavailableIfItIsUnknownOrNoText)
{
    for (const QVariant &value :
         {QVariant(u"fancy"_s), QVariant(u""_s), QVariant(1), QVariant(QStringList{u"Fancy"_s}), nothing})
        EXPECT_EQ(failureOf(set(u"DropDMGConfig"_s, value)), unavailable);
    EXPECT_EQ(configuration(), QVariant(u"Plain"_s));
}

TEST_F(DocumentConfiguration, isUnavailableThoughKnownWithoutDropDMG)
{
    host.application().hasDropDMG.set(false);
    EXPECT_EQ(failureOf(set(u"DropDMGConfig"_s, u"Fancy"_s)), unavailable);
    EXPECT_EQ(configuration(), QVariant(u"Plain"_s));
}

TEST_F(DocumentProperties, theWordsForNoConfigurationAreReadAsTheyStandAndCannotBeChosen)
{
    EXPECT_EQ(get(u"DropDMGConfig"_s), QVariant(u"Not applicable"_s));
    EXPECT_EQ(failureOf(set(u"DropDMGConfig"_s, u"Not applicable"_s)),
              u"N1203 No such DropDMG configuration available."_s);
}
