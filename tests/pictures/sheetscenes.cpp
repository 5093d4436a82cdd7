// What a window asks and tells in sheets, and its menus.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "ui/alertbox.h"

#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

void questions()
{
    Scene scene;
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.document().window().performClose();
    scene.draw(u"alert-closing.png"_s);
    scene.closeSheet();
}

void defaults()
{
    Scene scene;
    scene.document().perform(Action::doSetDocumentDefaults);
    scene.draw(u"alert-defaults.png"_s);
    scene.closeSheet();
    scene.document().perform(Action::doDropDMGHelp);
    scene.draw(u"help.png"_s);
    scene.closeSheet();
}

void missingCredentials()
{
    Scene scene;
    scene.document().appleIDField.setStringValue(u"x"_s);
    scene.document().appPassField.setStringValue({});
    for (const QString &name : {u"appleIDField"_s, u"appPassField"_s, u"providerNameField"_s})
        scene.window().findChild<QWidget *>(name)->setFocus();
    scene.draw(u"hints.png"_s);
}

void itemPanel()
{
    Scene scene;
    scene.makeItem(u"Example.app"_s);
    scene.document().perform(Action::doSubmit);
    scene.draw(u"panel.png"_s);
    scene.closeSheet();
}

void fatal()
{
    AlertBox box({u"Xcode or Transporter Not Found"_s,
                  u"Notarization cannot be performed without either Xcode.app 10.2 or later installed and "
                  u"running, or Transporter.app 1.1 or later installed. Both are free downloads from the "
                  u"Apple Store. You should install one or the other and run it at least once before trying "
                  u"to run Sealwright again.\n\nSealwright will now quit."_s,
                  {},
                  u"Settings…"_s});
    box.show();
    Scene::draw(box, u"alert-fatal.png"_s);
}

void menus()
{
    Scene scene;
    auto &bar = *scene.window().findChild<QMenuBar *>();
    int number = 0;
    for (const QAction *const title : bar.actions()) {
        title->menu()->popup(QPoint(0, 0));
        Scene::draw(*title->menu(), u"menu-%1.png"_s.arg(++number));
        title->menu()->hide();
    }
}

void profiles()
{
    Scene scene;
    auto &button = *scene.window().findChild<QToolButton *>(u"profileButton"_s);
    const auto press = [&](int row) {
        button.menu()->popup(QPoint(0, 0));
        button.menu()->hide();
        button.menu()->actions().at(row)->trigger();
        scene.settle();
    };
    press(1); // the line stands above it
    auto &name = *scene.window().findChild<QInputDialog *>();
    name.setTextValue(u"Example for release"_s);
    scene.draw(u"profile-name.png"_s);
    name.accept();
    scene.settle();
    scene.draw(u"profile.png"_s);
    button.menu()->popup(QPoint(0, 0));
    Scene::draw(*button.menu(), u"profile-menu.png"_s);
    button.menu()->hide();
}

} // namespace

void scenes::ofSheets()
{
    for (const auto &scene : {questions, defaults, missingCredentials, itemPanel, fatal, menus, profiles})
        scene();
}
