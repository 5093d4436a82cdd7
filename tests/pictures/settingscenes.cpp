// The settings page by page, and the about panel.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "about/aboutcontroller.h"
#include "app/preferencekeys.h"
#include "ui/preferenceswindow.h"

#include <QApplication>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

void settings()
{
    using Page = PreferencesWindow::Page;
    Scene scene;
    scene.host.preferences.remove(key::toolPause); // which tests do without
    scene.host.tools.add(u"/usr/bin/sealwright-keychain"_s);
    scene.host.tools.answer(u"sealwright-keychain"_s, {.output = "local\n"});
    PreferencesWindow window(scene.host.preferences,
                             KeychainTools(scene.host.host(), u"/usr/bin/sealwright-keychain"_s));
    window.show();
    const QList<std::pair<Page, QString>> pages{{Page::signing, u"settings-signing.png"_s},
                                                {Page::notarization, u"settings.png"_s},
                                                {Page::log, u"settings-log.png"_s},
                                                {Page::tools, u"settings-tools.png"_s}};
    for (const auto &[page, file] : pages) {
        window.showPage(page);
        scene.settle();
        Scene::draw(window, file);
    }
}

void about()
{
    Scene scene;
    QFile::copy(QStringLiteral(RESOURCES "/Credits.rtf"), scene.host.creditsFile());
    scene.host.application().doShowAboutPanel();
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (qobject_cast<AboutWindow *>(top))
            Scene::draw(*top, u"about.png"_s);
    }
}

} // namespace

void scenes::ofSettings()
{
    settings();
    about();
}
