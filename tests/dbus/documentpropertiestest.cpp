// A document's scripting properties, over a real bus: each is a control or a field of the live document.

#include "dbus/hostonbus.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"

using namespace Qt::StringLiterals;

class DocumentProperties : public HostOnBus {
protected:
    DocumentProperties() { host.preferences.takeChanges(); }
    // Whatever a test does to a document, the preferences stay as they are.
    ~DocumentProperties() override { EXPECT_TRUE(host.preferences.takeChanges().isEmpty()); }

    QVariant get(const QString &name) { return ofDocument(name); }
    QDBusMessage set(const QString &name, const QVariant &value) { return setOfDocument(name, value); }
    void expectTaken(const QString &name, const QVariant &value)
    {
        EXPECT_EQ(failureOf(set(name, value)), u"no error"_s) << name.toStdString();
    }
    void expectBusy(const QString &name, const QVariant &value)
    {
        EXPECT_EQ(failureOf(set(name, value)), u"N1199 Document is busy, status: waiting."_s)
            << name.toStdString();
    }
};

// Checkboxes

struct CheckboxRow {
    const char *name;
    Checkbox DocumentControls::*checkbox;
};

class DocumentCheckbox : public DocumentProperties, public testing::WithParamInterface<CheckboxRow> {
protected:
    QString name() const { return QString::fromLatin1(GetParam().name); }
    Checkbox &checkbox() { return host.document().*GetParam().checkbox; }
};

TEST_P(DocumentCheckbox, readsAsOnInStateOneOnly)
{
    const std::pair<int, bool> states[] = {{1, true}, {0, false}, {-1, false}};
    for (const auto &[state, isOn] : states) {
        checkbox().setState(state);
        EXPECT_EQ(get(name()), QVariant(isOn));
    }
}

TEST_P(DocumentCheckbox, isSetToOneOrZero)
{
    checkbox().setState(-1);
    expectTaken(name(), true);
    EXPECT_EQ(checkbox().state(), 1);
    expectTaken(name(), false);
    EXPECT_EQ(checkbox().state(), 0);
}

TEST_P(DocumentCheckbox, isNotSetWhileTheDocumentIsBusy)
{
    checkbox().setState(0);
    host.document().changeStatus(status::waiting);
    expectBusy(name(), true);
    EXPECT_EQ(checkbox().state(), 0);
    EXPECT_EQ(get(name()), QVariant(false));
}

TEST_P(DocumentCheckbox, takesNothingButABoolean)
{
    checkbox().setState(1);
    for (const QVariant &value : {QVariant(0), QVariant(u"false"_s), nothing})
        EXPECT_EQ(errorOf(set(name(), value)), buserror::invalidArgs);
    EXPECT_EQ(checkbox().state(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Properties, DocumentCheckbox,
    testing::Values(CheckboxRow{"SkipEnclosures", &DocumentControls::dontSignEnclosuresCheckbox},
                    CheckboxRow{"AllowEvents", &DocumentControls::eventsCheckbox},
                    CheckboxRow{"AllowCalendars", &DocumentControls::calendarsCheckbox},
                    CheckboxRow{"AllowAudio", &DocumentControls::audioCheckbox},
                    CheckboxRow{"AllowCamera", &DocumentControls::cameraCheckbox},
                    CheckboxRow{"AllowLocation", &DocumentControls::locationCheckbox},
                    CheckboxRow{"AllowPhotos", &DocumentControls::photosCheckbox},
                    CheckboxRow{"AllowAddressBook", &DocumentControls::addressBookCheckbox},
                    CheckboxRow{"AllowFrameworks", &DocumentControls::disableLibCheckbox},
                    CheckboxRow{"AllowJITCode", &DocumentControls::allowJITCheckbox},
                    CheckboxRow{"AllowUnsignedExecMem", &DocumentControls::allowUnsignedExecMemCheckbox},
                    CheckboxRow{"AllowDYLDEnvVars", &DocumentControls::allowDYLDEnvCheckbox},
                    CheckboxRow{"DisableMemProtection", &DocumentControls::disableMemProtectionCheckbox},
                    CheckboxRow{"IsDebugTool", &DocumentControls::isDebugToolCheckbox}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(DocumentProperties, logClearingIsOnWhileItsCheckboxIsOff)
{
    Checkbox &checkbox = host.document().dontClearCheckbox;
    const std::pair<int, bool> states[] = {{0, true}, {1, false}, {-1, false}};
    for (const auto &[state, isClearing] : states) {
        checkbox.setState(state);
        EXPECT_EQ(get(u"LogClearing"_s), QVariant(isClearing));
    }
    expectTaken(u"LogClearing"_s, true);
    EXPECT_EQ(checkbox.state(), 0);
    expectTaken(u"LogClearing"_s, false);
    EXPECT_EQ(checkbox.state(), 1);
}

// Fields

struct FieldRow {
    const char *name;
    TextField DocumentControls::*field;
};

class DocumentText : public DocumentProperties, public testing::WithParamInterface<FieldRow> {
protected:
    QString name() const { return QString::fromLatin1(GetParam().name); }
    TextField &field() { return host.document().*GetParam().field; }
};

TEST_P(DocumentText, isTheTextOfItsField)
{
    field().setStringValue(u"zwölf"_s);
    EXPECT_EQ(get(name()), QVariant(u"zwölf"_s));
    expectTaken(name(), u"thirteen"_s);
    EXPECT_EQ(field().stringValue(), u"thirteen"_s);
}

TEST_P(DocumentText, ofAnEmptyFieldReadsAsNothingAndNothingEmptiesTheField)
{
    field().setStringValue(u"x"_s);
    for (const QVariant &empty : {nothing, QVariant(u""_s)}) {
        expectTaken(name(), empty);
        EXPECT_EQ(field().stringValue(), u""_s);
        EXPECT_TRUE(isNoValue(get(name())));
    }
}

TEST_P(DocumentText, isNotSetWhileTheDocumentIsBusy)
{
    field().setStringValue(u"x"_s);
    host.document().changeStatus(status::waiting);
    expectBusy(name(), u"y"_s);
    expectBusy(name(), nothing);
    EXPECT_EQ(get(name()), QVariant(u"x"_s));
}

TEST_P(DocumentText, takesNothingButAText)
{
    field().setStringValue(u"x"_s);
    for (const QVariant &value : {QVariant(1), QVariant(true), QVariant(QStringList{u"y"_s})})
        EXPECT_EQ(errorOf(set(name(), value)), buserror::invalidArgs);
    EXPECT_EQ(field().stringValue(), u"x"_s);
}

INSTANTIATE_TEST_SUITE_P(Properties, DocumentText,
                         testing::Values(FieldRow{"AppleID", &DocumentControls::appleIDField},
                                         FieldRow{"AppPassword", &DocumentControls::appPassField},
                                         FieldRow{"ProviderName", &DocumentControls::providerNameField}),
                         [](const auto &row) { return std::string(row.param.name); });

// What is read only

TEST_F(DocumentProperties, theItemIsNothingBeforeTheFirstRunAndThenItsCopy)
{
    EXPECT_TRUE(isNoValue(get(u"AppletFile"_s)));
    client.end(client.beginSubmit({{u"at"_s, appURL()}, {u"skippingStapling"_s, true}}, documentPath()));
    host.settle();
    EXPECT_EQ(get(u"AppletFile"_s), QVariant(url(u"Foo - Submitted/Foo.app"_s)));
}

TEST_F(DocumentProperties, theWindowTabIsTheOneOnShow)
{
    const auto windowTab = [this] { return get(u"WindowTab"_s).value<QDBusObjectPath>().path(); };
    EXPECT_EQ(windowTab(), windowPath());
    const QString hidden = windowPath();
    host.application().newDocument(2);
    EXPECT_EQ(windowTab(), windowPath());
    const QString document = path(*host.application().allControllers().first());
    EXPECT_EQ(client.get(document, bus::documentInterface, u"WindowTab"_s).value<QDBusObjectPath>().path(),
              windowPath());
    EXPECT_NE(windowPath(), hidden);
}

TEST_F(DocumentProperties, theItemTheStatusAndTheWindowTabAreReadOnlyByNumberInEveryStatus)
{
    for (const QStringView word : {status::ready, status::waiting, status::interacting}) {
        host.document().changeStatus(word);
        for (const QString &name : {u"AppletFile"_s, u"DocStatus"_s, u"WindowTab"_s}) {
            for (const QVariant &value : {QVariant(u"file:///a.app"_s), QVariant(1), nothing})
                EXPECT_EQ(failureOf(set(name, value)), u"Minus10003 "_s);
        }
        EXPECT_EQ(get(u"DocStatus"_s), QVariant(word.toString()));
    }
    host.document().changeStatus(status::ready);
}

// What is skipped

TEST_F(DocumentProperties, thePathsToSkipAreTakenAsTheyCome)
{
    EXPECT_EQ(get(u"PathsToSkip"_s), QVariant(QStringList()));
    const QStringList paths{u"Contents/MacOS/tool"_s, u""_s, u"/not/there"_s, u"Contents/MacOS/tool"_s};
    expectTaken(u"PathsToSkip"_s, paths);
    EXPECT_EQ(host.document().skipPaths(), paths);
    EXPECT_EQ(get(u"PathsToSkip"_s), QVariant(paths));
    expectTaken(u"PathsToSkip"_s, nothing);
    EXPECT_TRUE(host.document().skipPaths().isEmpty());
}

TEST_F(DocumentProperties, thePathsToSkipCanBeAnEmptyList)
{
    host.document().skipPaths.set({u"x"_s});
    expectTaken(u"PathsToSkip"_s, QStringList());
    EXPECT_TRUE(host.document().skipPaths().isEmpty());
}

TEST_F(DocumentProperties, thePathsToSkipAreNotSetWhileTheDocumentIsBusyNorFromAnotherType)
{
    for (const QVariant &value : {QVariant(u"x"_s), QVariant(QVariantList{u"x"_s}), QVariant(1)})
        EXPECT_EQ(errorOf(set(u"PathsToSkip"_s, value)), buserror::invalidArgs);
    host.document().changeStatus(status::waiting);
    expectBusy(u"PathsToSkip"_s, QStringList{u"x"_s});
    expectBusy(u"PathsToSkip"_s, nothing);
    EXPECT_TRUE(host.document().skipPaths().isEmpty());
}

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

// A document that is busy, and one that is made

TEST_F(DocumentProperties, aBusyDocumentStopsNeitherTheOptionsNorTheExtraEntitlements)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(failureOf(set(u"SkipEnclosures"_s, true)), u"N1199 Document is busy, status: submitting."_s);
    for (const QString &name : {u"CreateDMG"_s, u"LogClearing"_s, u"UseDropDMG"_s})
        expectTaken(name, false);
    EXPECT_EQ(failureOf(set(u"ExtraEntitlements"_s, u"file:///a.plist"_s)), u"N6 "_s);
    EXPECT_EQ(get(u"ExtraEntitlements"_s), QVariant(u"file:///a.plist"_s));
    EXPECT_TRUE(failureOf(set(u"DropDMGConfig"_s, u"x"_s)).startsWith(u"N1203"_s));
    cancel();
    client.end(submission);
    host.settle();
}

TEST_F(DocumentProperties, aDocumentIsMadeWithTheOnesThatAreGiven)
{
    const QDBusMessage answer = makeDocument({{u"AppleID"_s, u"me@example.com"_s},
                                              {u"AllowJITCode"_s, true},
                                              {u"PathsToSkip"_s, QStringList{u"a"_s}},
                                              {u"LogClearing"_s, false},
                                              {u"AppPassword"_s, nothing}});
    EXPECT_EQ(answer.arguments().value(0).value<QDBusObjectPath>().path(), documentPath());
    EXPECT_EQ(get(u"AppleID"_s), QVariant(u"me@example.com"_s));
    EXPECT_EQ(get(u"AllowJITCode"_s), QVariant(true));
    EXPECT_EQ(get(u"PathsToSkip"_s), QVariant(QStringList{u"a"_s}));
    EXPECT_EQ(get(u"LogClearing"_s), QVariant(false));
    EXPECT_TRUE(isNoValue(get(u"AppPassword"_s)));
}

TEST_F(DocumentProperties, noDocumentIsMadeWithAValueOfTheWrongType)
{
    EXPECT_EQ(errorOf(makeDocument({{u"AppleID"_s, u"me@example.com"_s}, {u"AllowJITCode"_s, 1}})),
              buserror::invalidArgs);
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

TEST_F(DocumentProperties, aDocumentIsDescribedByItsTitle)
{
    host.window().setTitle(u"Foo"_s);
    EXPECT_EQ(host.document().steps().scripting.description(), u"MainWinController 'Foo'"_s);
}
