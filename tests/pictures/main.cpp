// Draws each state of the windows that the pages of docs/ show into the folder of the environment variable
// PICTURES. Arguments: "dark", "large" (a font twice the size).

#include "pictures/scene.h"

#include "about/aboutcontroller.h"
#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/desktopsignal.h"
#include "ui/keychainwindow.h"
#include "ui/preferenceswindow.h"
#include "ui/setupdialog.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QTabWidget>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

void emptyDocument()
{
    Scene scene;
    scene.draw(u"empty.png"_s);
}

void running()
{
    Scene scene;
    scene.host.tools.answer(u"ditto"_s, {.hangs = true});
    const QString item = scene.makeItem(u"Example.app"_s);
    scene.document().commands().submit.submitURL(itempath::toUrl(item));
    scene.host.runUntil([&] { return !scene.host.tools.callsOf(u"ditto"_s).isEmpty(); });
    QCoreApplication::processEvents();
    Scene::draw(scene.window(), u"running.png"_s);
    scene.host.tools.release(u"ditto"_s);
    scene.settle();
}

void waitingAndSuccess()
{
    Scene scene;
    scene.host.tools.answerRun(u"altool--notarization-info"_s, 1,
                               {.output = FakeTools::infoReport(u"in progress"_s)});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.host.timers.fireNext();
    scene.draw(u"waiting.png"_s);
    scene.host.firePolls();
    scene.draw(u"success.png"_s);
}

void failure()
{
    Scene scene;
    scene.host.tools.answer(u"codesign"_s, {.status = 1, .error = "Example.app: errSecInternalComponent\n"});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.draw(u"failure.png"_s);
}

void directSubmit()
{
    Scene scene;
    scene.host.application().applicationOpenFiles({scene.makeItem(u"Example.app"_s)});
    scene.window().resize(1024, 768);
    scene.draw(u"direct-submit.png"_s);
}

void providers()
{
    Scene scene;
    scene.host.tools.answer(u"altool--list-providers"_s,
                            {.output = R"(<plist version="1.0"><dict><key>providers</key><array>
<dict><key>ProviderShortname</key><string>ExampleCompany</string><key>ProviderName</key><string>Example Company</string>
<key>WWDRTeamID</key><string>ABCDE12345</string></dict>
<dict><key>ProviderShortname</key><string>JaneDoe</string><key>ProviderName</key><string>Jane Doe</string>
<key>WWDRTeamID</key><string>FGHIJ67890</string></dict></array></dict></plist>)"});
    scene.document().commands().providers.doListProviderShortnames();
    scene.draw(u"providers.png"_s);
}

void tabs()
{
    Scene scene;
    scene.host.submitToTheEnd(scene.makeItem(u"Example.app"_s));
    scene.host.application().newDocument(2);
    scene.window().resize(1024, 768);
    scene.draw(u"tabs.png"_s);
}

void firstStart()
{
    Scene scene(Scene::Keychain::empty);
    scene.window().resize(1024, 600);
    scene.draw(u"first-start.png"_s);
    auto &window = dynamic_cast<WidgetWindow &>(scene.document().window());
    window.beginSetup(SetupRoad::practice);
    scene.draw(u"first-start-practice.png"_s);
    window.sheet()->reject();
    scene.settle();
    window.beginSetup(SetupRoad::developerID);
    scene.draw(u"first-start-developer-id.png"_s);
}

void keychainPages()
{
    Scene scene;
    scene.host.tools.add(u"/usr/bin/sealwright-keychain"_s);
    scene.host.tools.answer(u"sealwright-keychain"_s,
                            {.output = "store: file, under a passphrase\nstate: unlocked\n"});
    KeychainWindow window(scene.host.host(), u"/usr/bin/sealwright-keychain"_s);
    window.show();
    auto &pages = *window.findChild<QTabWidget *>(u"keychainPages"_s);
    for (int page = 0; page < pages.count(); ++page) {
        pages.setCurrentIndex(page);
        scene.settle();
        Scene::draw(window, u"keychain-%1.png"_s.arg(page + 1));
    }
}

void panels()
{
    Scene scene;
    QFile::copy(QStringLiteral(RESOURCES "/Credits.rtf"), scene.host.creditsFile());
    scene.host.preferences.remove(key::toolPause); // which tests do without
    PreferencesWindow::present(scene.host.preferences, KeychainTools(scene.host.host(), u"keychain"_s));
    scene.settle();
    scene.host.application().doShowAboutPanel();
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (auto *const settings = qobject_cast<PreferencesWindow *>(top)) {
            settings->showPage(PreferencesWindow::Page::notarization);
            Scene::draw(*settings, u"settings.png"_s);
        }
        if (qobject_cast<AboutWindow *>(top))
            Scene::draw(*top, u"about.png"_s);
    }
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (qobject_cast<PreferencesWindow *>(top))
            delete top;
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir settings; // of the file dialog, which remembers where it has been
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(QStringLiteral(RESOURCES "/icons/256/org.sealwright.Sealwright.png")));
    const QStringList arguments = QApplication::arguments();
    if (arguments.contains(u"large"_s)) {
        QFont font = QApplication::font();
        font.setPointSizeF(2 * font.pointSizeF());
        QApplication::setFont(font);
    }
    platform::DesktopAppearance desktop{QDBusConnection(u"none"_s)};
    MemoryPreferences preferences;
    FakeDistributedNotifications notifications;
    const Appearance appearance(desktop, preferences, notifications);
    sayColourScheme(desktop, arguments.contains(u"dark"_s) ? 1 : 2);
    for (const auto &scene : {emptyDocument, running, waitingAndSuccess, failure, directSubmit, providers,
                              tabs, panels, firstStart, keychainPages})
        scene();
}
