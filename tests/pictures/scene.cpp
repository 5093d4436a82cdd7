#include "pictures/scene.h"

#include "app/preferencekeys.h"
#include "support/items.h"
#include "ui/appearance.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QTabWidget>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString outputFolder()
{
    return qEnvironmentVariable("PICTURES", QDir::currentPath());
}

} // namespace

Scene::Scene(Keychain keychain)
{
    // So that paths are shown as short as people have them.
    qputenv("HOME", QFileInfo(QFileInfo(host.item(u"x"_s)).path()).path().toUtf8());
    host.tools.answer(u"security"_s,
                      {.output = "  1) 0123 \"Developer ID Application: Example Company (ABCDE12345)\"\n"
                                 "  2) 4567 \"Developer ID Installer: Example Company (ABCDE12345)\"\n"
                                 "  3) 89AB \"Developer ID Application: Jane Doe (FGHIJ67890)\"\n"});
    host.preferences.setValue(key::appPassValue, u"notary"_s);
    host.preferences.setValue(key::appleIDValue, u"release@example.com"_s);
    if (keychain == Keychain::empty)
        host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    if (keychain == Keychain::empty) {
        host.preferences.setValue(key::appPassValue, QString());
        host.preferences.setValue(key::appleIDValue, QString());
    }
    host.configuration.keychainProgram = u"/usr/bin/sealwright-keychain"_s;
    host.configuration.profilesFolder = host.item(u"../profiles"_s);
    host.takeConfiguration();
    if (Appearance::isDark(QApplication::palette()))
        host.preferences.setValue(key::AppleInterfaceStyle, darkInterfaceStyle.toString());
    host.launch();
    window().resize(1024, 768);
    settle();
}

Scene::~Scene()
{
    host.timers.forgetAll();
    for (const DocumentPtr &document : QList(host.application().allControllers()))
        document->window().close();
    host.settle();
}

QWidget &Scene::window()
{
    return dynamic_cast<WidgetWindow &>(document().window()).widget();
}

QString Scene::makeItem(const QString &name)
{
    const QString path = host.item(name);
    items::makeBundle(path);
    return path;
}

void Scene::settle()
{
    host.settle();
    QTest::qWait(200); // a list lays its rows out anew a tenth of a second after its size has changed
}

void Scene::pause()
{
    QTest::qWait(200);
}

void Scene::closeSheet()
{
    for (auto *const sheet : window().findChildren<QDialog *>()) {
        if (sheet->isVisible())
            sheet->reject();
    }
    settle();
}

void Scene::showPage(int page)
{
    window().findChild<QTabWidget *>(u"sidePane"_s)->setCurrentIndex(page);
}

void Scene::draw(const QString &file)
{
    settle();
    window().grab().save(outputFolder() + u'/' + file);
}

void Scene::draw(QWidget &widget, const QString &file)
{
    QTest::qWait(50);
    widget.grab().save(outputFolder() + u'/' + file);
}
