#include "document/mainwincontroller.h"

#include "document/applicationinterface.h"
#include "document/documentcommands.h"
#include "document/documentdefaults.h"
#include "document/windowfactory.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/preferences.h"
#include "platform/workerqueue.h"
#include "run/preferencekeys.h"
#include "run/workingfoldernames.h"
#include "tools/commandsimple.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr quint64 firstVersionForOwnRunner = 4;

void deleteOnMainThread(platform::MainQueue &mainQueue, MainWinController *document)
{
    if (mainQueue.isMainThread())
        delete document;
    else
        mainQueue.post([document] { delete document; });
}

/// Keeps the number and the field the same, whichever is changed. A text that is no number from 1 on stays
/// in the field and leaves the number as it is.
void bind(TextField &field, ObservableProperty<quint64> &number)
{
    const auto show = [&] { field.setStringValue(QString::number(number())); };
    QObject::connect(&number, &Observable::changed, &field, show);
    QObject::connect(&field, &Control::changed, &number, [&] {
        if (const quint64 typed = field.stringValue().toULongLong(); typed > 0)
            number.set(typed);
    });
    show();
}

/// Keeps a checkbox and the flag that it shows the same, whichever is changed.
void bind(Checkbox &checkbox, ObservableProperty<bool> &flag)
{
    QObject::connect(&checkbox, &Control::changed, &flag, [&] { flag.set(checkbox.isOn()); });
    QObject::connect(&flag, &Observable::changed, &checkbox, [&] { checkbox.setState(flag() ? 1 : 0); });
}

/// Keeps the title at what the popup shows.
void bind(Popup &popup, Property<QString> &title)
{
    QObject::connect(&popup, &Control::changed, &popup, [&] { title.set(popup.titleOfSelectedItem()); });
}

void describe(Button &button, const QString &title, const QString &toolTip, Action action)
{
    button.setTitle(title);
    button.setToolTip(toolTip);
    button.setAction(action);
}

} // namespace

std::shared_ptr<MainWinController> MainWinController::withLoadedWindow(ApplicationInterface &appDelegate)
{
    auto &mainQueue = appDelegate.host().mainQueue;
    const std::shared_ptr<MainWinController> document(
        new MainWinController(appDelegate),
        [&mainQueue](MainWinController *last) { deleteOnMainThread(mainQueue, last); });
    document->m_window = appDelegate.windowFactory().makeWindow(*document);
    document->m_window->setDelegate({[weak = document.get()] { return weak->windowShouldClose(); },
                                     [weak = document.get()] { weak->windowWillClose(); }});
    document->windowDidLoad();
    return document;
}

MainWinController::MainWinController(ApplicationInterface &appDelegate)
    : uniqueID(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , stepList(appDelegate.host().clock)
    , log(appDelegate.host().clock, appDelegate.host().files,
          [this](const QString &line, LogStyle style) {
              dispatchToMain([this, line, style] { appendToWindowLog(line, style); });
          })
    , logHandle(log.handle)
    , m_appDelegate(appDelegate)
    , m_commands(std::make_unique<DocumentCommands>(*this))
{
    statusString.set(status::ready.toString());
    bindControls();
}

MainWinController::~MainWinController() = default;

const platform::Host &MainWinController::host() const
{
    return m_appDelegate.host();
}

void MainWinController::bindControls()
{
    bind(createDiskImageCheckbox, useDiskImage);
    bind(useDropDMGCheckbox, useDropDMG);
    bind(dropDMGConfigsPopup, dropDMGConfiguration);
    bind(historyMaxPagesField, maxPageCount);
    const auto showConfigNames = [this] {
        dropDMGConfigsPopup.setItemTitles(m_appDelegate.dropDMGConfigNames());
    };
    connect(&m_appDelegate.dropDMGConfigNames, &Observable::changed, this, showConfigNames);
    showConfigNames();
    describe(signOnlyButton, u"Sign Only…"_s, u"Signs a copy of an item and submits nothing"_s,
             Action::doSignOnly);
    describe(fetchHistoryButton, u"Fetch History"_s, u"Lists what the account has submitted"_s,
             Action::doFetchHistory);
    describe(chooseProviderButton, u"Choose…"_s, u"Asks for the short names of your teams"_s,
             Action::doListProviderShortnames);
    historyMaxPagesLabel.setStringValue(u"Pages at most"_s);
    commands().submit.setOrdinaryButtons();
}

void MainWinController::windowDidLoad()
{
    const auto &preferences = host().preferences;
    const auto restoreText = [&preferences](const QString &key, TextField &field) {
        if (const QString text = preferences.string(key); !text.isNull())
            field.setStringValue(text);
    };
    restoreText(key::providerNameValue, providerNameField);
    restoreText(key::appleIDValue, appleIDField);
    restoreText(key::appPassValue, appPassField);
    const QStringList identities = m_appDelegate.identities();
    identitiesPopup.setItemTitles(identities);
    if (identities.size() >= 2)
        identitiesPopup.selectItemWithTitle(preferences.string(key::lastUsedIdentity));
    useDiskImage.set(preferences.boolean(key::createDiskImage));
    useDropDMG.set(preferences.boolean(key::useDropDMGForImages));
    dropDMGConfigsPopup.selectItemWithTitle(preferences.string(key::dropDMGConfigName));
    for (const auto &[key, checkbox] : checkboxDefaults())
        (this->*checkbox).setState(preferences.boolean(key) ? 1 : 0);
    extraEntitlementsButton.setState(0);
    const bool hasOwnRunner = m_appDelegate.altoolVersionNumber() >= firstVersionForOwnRunner;
    if (hasOwnRunner)
        ownTaskRunner.set(m_appDelegate.newTaskMaster());
    chooseProviderButton.setIsEnabled(hasOwnRunner);
    altoolPath.set(m_appDelegate.altoolPath());
}

void MainWinController::perform(Action action)
{
    switch (action) {
    case Action::doSubmit:
        return commands().submit.doSubmit();
    case Action::doDirectSubmit:
        return commands().submit.doDirectSubmit();
    case Action::doSubmitAgain:
        return commands().submit.doSubmitAgain();
    case Action::doCancelDirectSubmit:
        return commands().submit.doCancelDirectSubmit();
    case Action::doStapleOnly:
        return commands().stapleOnly.doStapleOnly();
    case Action::doStapleAgain:
        return commands().stapleOnly.doStapleAgain();
    case Action::doGoOnWaiting:
        return commands().resume.doGoOnWaiting();
    case Action::doSignOnly:
        return commands().signOnly.doSignOnly();
    case Action::doSignAgain:
        return commands().signOnly.doSignAgain();
    case Action::doCancel:
        return doCancel();
    case Action::doClearStatus:
        return doClearStatus();
    case Action::doExtraEntitlements:
        return doExtraEntitlements();
    case Action::doAppPassHelp:
        return commands().help.doAppPassHelp();
    case Action::doTeamProviderHelp:
        return commands().help.doTeamProviderHelp();
    case Action::doExtraEntitlementsHelp:
        return commands().help.doExtraEntitlementsHelp();
    case Action::doDropDMGHelp:
        return commands().help.doDropDMGHelp();
    case Action::doSetDocumentDefaults:
        return doSetDocumentDefaults();
    case Action::doPrint:
        return doPrint();
    case Action::doRunPageLayout:
        return doRunPageLayout();
    case Action::doCloseDocument:
        return doCloseDocument(CloseSender::person);
    case Action::doCloseWindow:
        return doCloseWindow();
    case Action::doFetchHistory:
        return commands().history.doFetchHistory();
    case Action::doInfoForUUIDInFile:
        return commands().requestInfo.doInfoForUUIDInFile();
    case Action::doInfoForUUIDOfLastUpload:
        return commands().requestInfo.doInfoForUUIDOfLastUpload();
    case Action::doInfoForUUIDOnClipboard:
        return commands().requestInfo.doInfoForUUIDOnClipboard();
    case Action::doListProviderShortnames:
        return commands().providers.doListProviderShortnames();
    case Action::none:
        return;
    }
}

SLWTaskMasterPtr MainWinController::taskRunner() const
{
    const auto own = ownTaskRunner();
    return own ? own : m_appDelegate.taskMaster();
}

SLWTaskMasterPtr MainWinController::uploadTaskRunner() const
{
    const auto own = ownTaskRunner();
    return own ? own : m_appDelegate.uploadTaskMaster();
}

bool MainWinController::shouldEnableURL(const QUrl &url)
{
    const QString path = itempath::fromUrl(url);
    return itempath::lowerExtension(path) != "txt"_L1
        || itempath::lastComponent(path) == workingfolder::requestUUIDName;
}

QString MainWinController::runCommandSimple(const QString &commandLine) const
{
    return sealwright::runCommandSimple(host().launcher, commandLine);
}

void MainWinController::dispatchToMain(std::function<void()> block)
{
    host().mainQueue.post([held = shared_from_this(), block = std::move(block)] { block(); });
}

} // namespace sealwright
