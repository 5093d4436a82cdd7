// The first steps, and the keychain that they fill.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "app/keychaincommands.h"
#include "ui/keychainwindow.h"
#include "ui/setupdialog.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

const QString program = u"/usr/bin/sealwright-keychain"_s;
constexpr QSize smallWindow(1024, 600);

WidgetWindow &windowOf(Scene &scene)
{
    return dynamic_cast<WidgetWindow &>(scene.document().window());
}

void practice()
{
    Scene scene(Scene::Keychain::empty);
    scene.host.tools.add(program);
    scene.window().resize(smallWindow);
    scene.draw(u"first-start.png"_s);
    windowOf(scene).beginSetup(SetupRoad::practice);
    scene.draw(u"first-start-practice.png"_s);
    auto &button = *scene.window().findChild<QPushButton *>(u"practiceButton"_s);
    scene.host.tools.answer(u"sealwright-keychain"_s,
                            {.status = 1, .error = "sealwright-keychain: the keychain is locked\n"});
    button.click();
    scene.draw(u"first-start-practice-failed.png"_s);
    scene.host.tools.answer(u"sealwright-keychain"_s, {});
    scene.host.tools.answer(u"security"_s,
                            {.output = "  1) 0123 \"Developer ID Application: "
                                 + keychain::withTeam(u"Practice"_s).toUtf8() + "\"\n"});
    button.click();
    scene.draw(u"first-start-practice-done.png"_s);
    scene.closeSheet();
}

void developerID()
{
    Scene scene(Scene::Keychain::empty);
    scene.host.tools.add(program);
    scene.window().resize(smallWindow);
    windowOf(scene).beginSetup(SetupRoad::developerID);
    scene.draw(u"first-start-developer-id.png"_s);
    scene.window().findChild<QTabWidget *>(u"setupCredentials"_s)->setCurrentIndex(1);
    scene.window().findChild<QLineEdit *>(u"passwordAppleID"_s)->setText(u"x"_s);
    scene.draw(u"first-start-password.png"_s);
    scene.closeSheet();
}

void keychainPages()
{
    Scene scene;
    scene.host.tools.add(program);
    scene.host.tools.answer(u"sealwright-keychain"_s,
                            {.output = "store: file, under a passphrase\nstate: unlocked\n"});
    KeychainWindow window(scene.host.host(), program);
    window.show();
    auto &pages = *window.findChild<QTabWidget *>(u"keychainPages"_s);
    for (int page = 0; page < pages.count(); ++page) {
        pages.setCurrentIndex(page);
        scene.settle();
        Scene::draw(window, u"keychain-%1.png"_s.arg(page + 1));
    }
}

void lockedKeychain()
{
    Scene scene;
    scene.host.tools.add(program);
    scene.host.tools.answer(u"sealwright-keychain"_s,
                            {.output = "store: file, under a passphrase\nstate: locked\n"});
    scene.host.application().lookAtKeychain();
    scene.draw(u"locked.png"_s);
    KeychainWindow window(scene.host.host(), program);
    window.show();
    window.findChild<QTabWidget *>(u"keychainPages"_s)
        ->setCurrentIndex(int(KeychainWindow::Page::protection));
    scene.settle();
    Scene::draw(window, u"keychain-locked.png"_s);
}

} // namespace

void scenes::ofFirstSteps()
{
    for (const auto &scene : {practice, developerID, keychainPages, lockedKeychain})
        scene();
}
