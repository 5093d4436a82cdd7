// Draws each state of the windows into the folder of the environment variable PICTURES. Arguments: "dark",
// "large" (a font twice the size), "german", "docs" (only what the pages of docs/ show).

#include "pictures/scenes.h"

#include "platform/preferences.h"
#include "support/desktopsignal.h"
#include "support/fakehost.h"
#include "ui/appearance.h"
#include "ui/language.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QLocale>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QTemporaryDir settings; // of the file dialog, which remembers where it has been
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName(u"Sealwright"_s);
    QApplication::setWindowIcon(QIcon(QStringLiteral(RESOURCES "/icons/256/org.sealwright.Sealwright.png")));
    const QStringList arguments = QApplication::arguments();
    if (arguments.contains(u"large"_s)) {
        QFont font = QApplication::font();
        font.setPointSizeF(2 * font.pointSizeF());
        QApplication::setFont(font);
    }
    if (arguments.contains(u"german"_s)) {
        QLocale::setDefault(QLocale(QLocale::German));
        language::use(QLocale(), QStringLiteral(TRANSLATIONS));
    }
    platform::DesktopAppearance desktop{QDBusConnection(u"none"_s)};
    MemoryPreferences preferences;
    FakeDistributedNotifications notifications;
    const Appearance appearance(desktop, preferences, notifications);
    sayColourScheme(desktop, arguments.contains(u"dark"_s) ? 1 : 2);
    scenes::ofTheDocuments();
    scenes::ofSettings();
    if (arguments.contains(u"docs"_s))
        return 0;
    scenes::ofRuns();
    scenes::ofSheets();
    scenes::ofTheLog();
    scenes::ofFirstSteps();
}
