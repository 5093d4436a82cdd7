// The application's scripting properties, over a real bus: nearly all are preferences.

#include "dbus/scriptedproperties.h"
#include "document/applicationinterface.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

// Flags

struct FlagRow {
    const char *name;
    QString key;
    bool isInverted = false;
};

class ApplicationFlag : public ApplicationProperties, public testing::WithParamInterface<FlagRow> {
protected:
    QString name() const { return QString::fromLatin1(GetParam().name); }
    QVariant storedFor(bool value) const { return value != GetParam().isInverted; }
};

TEST_P(ApplicationFlag, readsWhatThePreferenceSays)
{
    for (const bool value : {true, false, true}) {
        host.preferences.setValue(GetParam().key, storedFor(value));
        EXPECT_EQ(get(name()), QVariant(value));
    }
    host.preferences.remove(GetParam().key);
    EXPECT_EQ(get(name()),
              QVariant(key::registeredDefaults().value(GetParam().key).toBool() != GetParam().isInverted));
}

TEST_P(ApplicationFlag, isStoredAtOnceAndReachesOnlyDocumentsMadeLater)
{
    for (const bool value : {false, true}) {
        expectTaken(name(), !value);
        makeDocument();
        host.preferences.takeChanges();
        expectTaken(name(), value);
        EXPECT_EQ(host.preferences.takeChanges(), QStringList{GetParam().key});
        EXPECT_EQ(stored(GetParam().key), storedFor(value));
        EXPECT_EQ(get(name()), QVariant(value));
        EXPECT_EQ(ofDocument(name()), QVariant(!value));
        makeDocument();
        EXPECT_EQ(ofDocument(name()), QVariant(value));
    }
}

TEST_P(ApplicationFlag, isWrittenInEveryStatus)
{
    host.application().changeStatus(status::interacting);
    host.document().changeStatus(status::submitting);
    for (const bool value : {true, false}) {
        expectTaken(name(), value);
        EXPECT_EQ(stored(GetParam().key), storedFor(value));
    }
}

TEST_P(ApplicationFlag, takesNothingButABoolean)
{
    for (const QVariant &value : {QVariant(1), QVariant(u"true"_s), QVariant(1.0), nothing})
        EXPECT_EQ(errorOf(set(name(), value)), buserror::invalidArgs);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Properties, ApplicationFlag,
    testing::Values(
        FlagRow{"LogClearing", key::dontClearLogEachTime, true},
        FlagRow{"SkipEnclosures", key::dontSignEnclosures}, FlagRow{"AllowEvents", key::allowAppleEvents},
        FlagRow{"AllowCalendars", key::allowCalendars}, FlagRow{"AllowAudio", key::allowAudio},
        FlagRow{"AllowCamera", key::allowCamera}, FlagRow{"AllowLocation", key::allowLocation},
        FlagRow{"AllowPhotos", key::allowPhotos}, FlagRow{"AllowAddressBook", key::allowAddressBook},
        FlagRow{"AllowFrameworks", key::allowFrameworks}, FlagRow{"AllowJITCode", key::allowJITCode},
        FlagRow{"AllowUnsignedExecMem", key::allowUnsignedExecMem},
        FlagRow{"AllowDYLDEnvVars", key::allowDYLDEnvVariables},
        FlagRow{"DisableMemProtection", key::disableMemProtection},
        FlagRow{"IsDebugTool", key::isDebuggingTool}, FlagRow{"CreateDMG", key::createDiskImage},
        FlagRow{"UseDropDMG", key::useDropDMGForImages}),
    [](const auto &row) { return std::string(row.param.name); });

// Texts

struct TextRow {
    const char *name;
    QString key;
};

class ApplicationText : public ApplicationProperties, public testing::WithParamInterface<TextRow> {
protected:
    QString name() const { return QString::fromLatin1(GetParam().name); }
};

TEST_P(ApplicationText, isStoredAtOnceAndReachesOnlyDocumentsMadeLater)
{
    expectTaken(name(), u"früher"_s);
    makeDocument();
    host.preferences.takeChanges();
    expectTaken(name(), u"später"_s);
    EXPECT_EQ(host.preferences.takeChanges(), QStringList{GetParam().key});
    EXPECT_EQ(stored(GetParam().key), QVariant(u"später"_s));
    EXPECT_EQ(get(name()), QVariant(u"später"_s));
    EXPECT_EQ(ofDocument(name()), QVariant(u"früher"_s));
    makeDocument();
    EXPECT_EQ(ofDocument(name()), QVariant(u"später"_s));
}

TEST_P(ApplicationText, noValueRemovesTheKeyAndLeavesTheFieldOfANewDocumentEmpty)
{
    expectTaken(name(), u"something"_s);
    expectTaken(name(), nothing);
    EXPECT_FALSE(host.preferences.stored().contains(GetParam().key));
    EXPECT_TRUE(isNoValue(get(name())));
    makeDocument();
    EXPECT_TRUE(isNoValue(ofDocument(name())));
}

TEST_P(ApplicationText, anEmptyOneIsStoredAndReadsAsNothing)
{
    expectTaken(name(), u""_s);
    EXPECT_EQ(stored(GetParam().key), QVariant(u""_s));
    EXPECT_TRUE(isNoValue(get(name())));
}

TEST_P(ApplicationText, isWrittenInEveryStatus)
{
    host.application().changeStatus(status::interacting);
    host.document().changeStatus(status::submitting);
    expectTaken(name(), u"x"_s);
    EXPECT_EQ(stored(GetParam().key), QVariant(u"x"_s));
}

TEST_P(ApplicationText, takesNothingButAText)
{
    for (const QVariant &value : {QVariant(1), QVariant(true), QVariant(QStringList{u"x"_s})})
        EXPECT_EQ(errorOf(set(name(), value)), buserror::invalidArgs);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Properties, ApplicationText,
                         testing::Values(TextRow{"AppleID", key::appleIDValue},
                                         TextRow{"AppPassword", key::appPassValue},
                                         TextRow{"ProviderName", key::providerNameValue}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(ApplicationProperties, theConfigurationIsStoredAndReadAsItIs)
{
    EXPECT_TRUE(isNoValue(get(u"DropDMGConfig"_s)));
    host.application().changeStatus(status::interacting);
    for (const QString &name : {u"unknown"_s, u""_s}) {
        expectTaken(u"DropDMGConfig"_s, name);
        EXPECT_EQ(stored(key::dropDMGConfigName), QVariant(name));
        EXPECT_EQ(get(u"DropDMGConfig"_s), QVariant(name));
    }
    host.preferences.setValue(key::dropDMGConfigName, 7); // whatever it is, it is a text to a script
    EXPECT_EQ(get(u"DropDMGConfig"_s), QVariant(u"7"_s));
    expectTaken(u"DropDMGConfig"_s, nothing);
    EXPECT_FALSE(host.preferences.stored().contains(key::dropDMGConfigName));
    EXPECT_EQ(errorOf(set(u"DropDMGConfig"_s, 1)), buserror::invalidArgs);
}

// The identities

class ApplicationIdentity : public ApplicationProperties {
protected:
    ApplicationIdentity() { host.application().identities.set({u"Jane (AAAA)"_s, u"Joe (BBBB)"_s}); }
};

TEST_F(ApplicationIdentity, theIdentitiesAreThoseThatLaunchFound)
{
    EXPECT_EQ(get(u"DeveloperIdentities"_s), QVariant(QStringList{u"Jane (AAAA)"_s, u"Joe (BBBB)"_s}));
    EXPECT_EQ(errorOf(set(u"DeveloperIdentities"_s, QStringList{u"x"_s})), buserror::propertyReadOnly);
}

TEST_F(ApplicationIdentity, oneThatIsListedIsStoredAndSelectedInDocumentsMadeLater)
{
    host.application().changeStatus(status::interacting);
    const QVariant before = ofDocument(u"ActiveIdentity"_s);
    expectTaken(u"ActiveIdentity"_s, u"Joe (BBBB)"_s);
    EXPECT_EQ(stored(key::lastUsedIdentity), QVariant(u"Joe (BBBB)"_s));
    EXPECT_EQ(get(u"ActiveIdentity"_s), QVariant(u"Joe (BBBB)"_s));
    EXPECT_EQ(ofDocument(u"ActiveIdentity"_s), before);
    makeDocument();
    EXPECT_EQ(ofDocument(u"ActiveIdentity"_s), QVariant(u"Joe (BBBB)"_s));
}

TEST_F(ApplicationIdentity, oneThatIsNotListedIsWrongAndStoresNothing)
{
    expectTaken(u"ActiveIdentity"_s, u"Joe (BBBB)"_s);
    for (const QString &identity : {u"Nobody"_s, u""_s, u"Developer ID Application: Joe (BBBB)"_s})
        EXPECT_EQ(failureOf(set(u"ActiveIdentity"_s, identity)), u"N6 "_s);
    EXPECT_EQ(stored(key::lastUsedIdentity), QVariant(u"Joe (BBBB)"_s));
    EXPECT_EQ(errorOf(set(u"ActiveIdentity"_s, 1)), buserror::invalidArgs);
}

TEST_F(ApplicationIdentity, noValueIsRemovedAndReportedAsWrong)
{
    expectTaken(u"ActiveIdentity"_s, u"Joe (BBBB)"_s);
    EXPECT_EQ(failureOf(set(u"ActiveIdentity"_s, nothing)), u"N6 "_s);
    EXPECT_FALSE(host.preferences.stored().contains(key::lastUsedIdentity));
    EXPECT_TRUE(isNoValue(get(u"ActiveIdentity"_s)));
}

TEST_F(ApplicationIdentity, anEmptyStoredOneReadsAsNothing)
{
    host.preferences.setValue(key::lastUsedIdentity, u""_s);
    EXPECT_TRUE(isNoValue(get(u"ActiveIdentity"_s)));
}

TEST_F(ApplicationIdentity, theWordsForNoneAreTakenByTheApplicationAndRefusedByADocument)
{
    const QString none = noIdentitiesPlaceholder.toString();
    host.application().identities.set({none});
    makeDocument();
    expectTaken(u"ActiveIdentity"_s, none);
    EXPECT_EQ(stored(key::lastUsedIdentity), QVariant(none));
    EXPECT_EQ(failureOf(setOfDocument(u"ActiveIdentity"_s, none)), u"N6 "_s);
}

// Withdrawn ones, and all at once

TEST_F(ApplicationProperties, whatWasWithdrawnIsRefusedWithItsNumberAndText)
{
    const QString expected = u"N1204 No longer supported."_s;
    for (const QString &name : {u"RememberAppleID"_s, u"RememberAppPassword"_s, u"RememberProviderName"_s}) {
        EXPECT_EQ(failureOf(client.tryToGet(bus::applicationPath, bus::applicationInterface, name)),
                  expected);
        for (const QVariant &value : {QVariant(true), QVariant(u"x"_s), nothing})
            EXPECT_EQ(failureOf(set(name, value)), expected);
    }
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
}

TEST_F(ApplicationProperties, allAtOnceAreTheRecordTheListsAndTheLastErrorWithoutAnError)
{
    const QStringList record{u"Name"_s,
                             u"Version"_s,
                             u"IsActive"_s,
                             u"AppStatus"_s,
                             u"PollingDelay"_s,
                             u"LogClearing"_s,
                             u"ErrorRetryLimit"_s,
                             u"DeveloperIdentities"_s,
                             u"ActiveIdentity"_s,
                             u"AppleID"_s,
                             u"AppPassword"_s,
                             u"ProviderName"_s,
                             u"SkipEnclosures"_s,
                             u"AllowEvents"_s,
                             u"AllowCalendars"_s,
                             u"AllowAudio"_s,
                             u"AllowCamera"_s,
                             u"AllowLocation"_s,
                             u"AllowPhotos"_s,
                             u"AllowAddressBook"_s,
                             u"AllowFrameworks"_s,
                             u"AllowJITCode"_s,
                             u"AllowUnsignedExecMem"_s,
                             u"AllowDYLDEnvVars"_s,
                             u"DisableMemProtection"_s,
                             u"IsDebugTool"_s,
                             u"CreateDMG"_s,
                             u"UseDropDMG"_s,
                             u"DropDMGConfig"_s};
    ASSERT_EQ(record.size(), 29);
    QStringList expected = record
        + QStringList{u"OrderedWindows"_s, u"AllOrderedWindows"_s, u"OrderedDocuments"_s,
                      u"OrderedPseudoDocuments"_s, u"LastErrorFrom"_s};
    expected.sort();
    const QVariantMap all = getAll();
    EXPECT_EQ(all.keys(), expected);
    EXPECT_TRUE(isNoValue(all.value(u"ActiveIdentity"_s)));
    EXPECT_EQ(all.value(u"PollingDelay"_s), QVariant(30.0));
}

TEST_F(ApplicationProperties, askingForAllLeavesTheLastErrorAsItIs)
{
    host.application().identities.set({u"Joe (BBBB)"_s});
    host.tools.answer(u"codesign"_s, {.status = 1, .error = QByteArray(2000, 'x')});
    client.end(client.beginSubmit({{u"at"_s, appURL()}}, documentPath()));
    host.settle();
    EXPECT_FALSE(isNoValue(getAll().value(u"LastErrorFrom"_s)));
    EXPECT_FALSE(isNoValue(getAll().value(u"LastErrorFrom"_s)));
}
