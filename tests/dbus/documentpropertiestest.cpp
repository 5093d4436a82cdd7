// A document's scripting properties, over a real bus: each is a control or a field of the live document.

#include "dbus/scriptedproperties.h"
#include "scripting/MainWinController+Scripting.h"

#include "document/documentcommands.h"
#include "document/profiles.h"
#include "run/preferencekeys.h"

#include <limits>

using namespace Qt::StringLiterals;

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

// A document that is busy, and one that is made

TEST_F(DocumentProperties, aBusyDocumentStopsNeitherTheOptionsNorTheExtraEntitlements)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    EXPECT_EQ(failureOf(set(u"SkipEnclosures"_s, true)), u"N1199 Document is busy, status: submitting."_s);
    for (const QString &name : {u"CreateDMG"_s, u"LogClearing"_s, u"UseDropDMG"_s, u"IsTabbed"_s})
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
    EXPECT_EQ(MainWinControllerScripting(host.document()).description(), u"MainWinController 'Foo'"_s);
}

struct MissingRow {
    const char *object;
    QStringList properties;
    QStringList methods;
};

class MissingNames : public HostOnBus, public testing::WithParamInterface<MissingRow> { };

TEST_P(MissingNames, areOnTheOtherObjectOnly)
{
    const bool isDocument = QByteArray(GetParam().object) == "document";
    const QString path = isDocument ? documentPath() : bus::applicationPath;
    const QString interface = isDocument ? bus::documentInterface : bus::applicationInterface;
    for (const QString &name : GetParam().properties) {
        EXPECT_EQ(errorOf(client.tryToGet(path, interface, name)), buserror::unknownProperty);
        EXPECT_EQ(errorOf(client.set(path, interface, name, true)), buserror::unknownProperty);
    }
    for (const QString &name : GetParam().methods)
        EXPECT_EQ(errorOf(client.call(path, interface, name, {QVariantMap()})), buserror::unknownMethod);
}

INSTANTIATE_TEST_SUITE_P(Objects, MissingNames,
                         testing::Values(MissingRow{"application",
                                                    {u"ExtraEntitlements"_s, u"PathsToSkip"_s,
                                                     u"AppletFile"_s, u"DocStatus"_s, u"IsTabbed"_s,
                                                     u"WindowTab"_s},
                                                    {u"FetchLog"_s, u"ClearLog"_s}},
                                         MissingRow{"document",
                                                    {u"AppStatus"_s, u"PollingDelay"_s, u"ErrorRetryLimit"_s,
                                                     u"DeveloperIdentities"_s, u"RememberAppleID"_s,
                                                     u"RememberAppPassword"_s, u"RememberProviderName"_s},
                                                    {u"MakeDocument"_s}}),
                         [](const auto &row) { return std::string(row.param.object); });

// The pause behind each tool

TEST_F(DocumentProperties, aDocumentsOwnRunnerWaitsAsLongAsItIsTold)
{
    EXPECT_EQ(get(u"ToolPause"_s), QVariant(0.0)) << "as it is set";
    expectTaken(u"ToolPause"_s, 0.25);
    EXPECT_EQ(get(u"ToolPause"_s), QVariant(0.25));
    EXPECT_EQ(host.document().ownTaskRunner()->pauseAfterExit(), 0.25);
    for (const double wrong : {-0.1, 60.5, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(failureOf(set(u"ToolPause"_s, wrong)), u"N6 A pause lasts from 0 to 60 seconds."_s);
    EXPECT_EQ(get(u"ToolPause"_s), QVariant(0.25));
    host.document().changeStatus(status::waiting);
    expectBusy(u"ToolPause"_s, 1.0);
}

TEST_F(DocumentProperties, runnersThatAreSharedHaveNoPauseOfADocuments)
{
    host.document().ownTaskRunner.set(nullptr);
    EXPECT_TRUE(isNoValue(get(u"ToolPause"_s)));
    EXPECT_EQ(failureOf(set(u"ToolPause"_s, 1.0)),
              u"N6 Documents share their runners with this notary tool."_s);
}

// Profiles

TEST_F(DocumentProperties, aProfileIsUsedByItsName)
{
    const ProfileStore store(host.files, host.configuration.profilesFolder);
    Profile profile = profiles::profileOf(host.document());
    profile.insert(key::appleIDValue, u"release@example.com"_s);
    ASSERT_TRUE(store.save(u"Product"_s, profile));
    EXPECT_EQ(get(u"Profile"_s), QVariant(QString()));
    expectTaken(u"Profile"_s, u"Product"_s);
    EXPECT_EQ(get(u"AppleID"_s), QVariant(u"release@example.com"_s));
    EXPECT_EQ(errorOf(set(u"Profile"_s, u"Nobody"_s)), u"org.sealwright.Error.N6"_s);
    EXPECT_EQ(get(u"Profile"_s), QVariant(u"Product"_s));
}

TEST_F(DocumentProperties, aProfileIsNotUsedWhileTheDocumentIsBusy)
{
    host.document().changeStatus(status::waiting);
    expectBusy(u"Profile"_s, u"Product"_s);
}
