// Linked into the program: a person who opens a window from the menu, closes all documents and then that
// window, and says so on standard output, as it says if it paints what nobody sees.
//
// $STEERED_ITEM    the text of the menu item, without its mnemonic

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

enum class Kind { document, other };

QWidget *shownWindow(Kind kind)
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        const bool isDocument = qobject_cast<QMainWindow *>(window) != nullptr;
        if (window->isVisible() && isDocument == (kind == Kind::document))
            return window;
    }
    return nullptr;
}

// Each is tried until it could be done.

bool chooseItem()
{
    const QWidget *const document = shownWindow(Kind::document);
    if (!document)
        return false;
    if (document->updatesEnabled())
        std::puts("paints");
    const QString wanted = qEnvironmentVariable("STEERED_ITEM");
    for (QAction *const action : document->findChildren<QAction *>()) {
        if (action->text().remove(u'&') == wanted) {
            action->trigger();
            return true;
        }
    }
    return false;
}

bool closeDocument()
{
    if (!shownWindow(Kind::other))
        return false;
    shownWindow(Kind::document)->close(); // refused by the window, which lets its documents decide
    return true;
}

bool closeOther()
{
    return !shownWindow(Kind::document) && shownWindow(Kind::other)->close();
}

bool sayIt()
{
    return std::puts("closed") >= 0 && std::fflush(stdout) == 0;
}

void meetPerson()
{
    auto *const turns = new QTimer(qApp);
    const auto doNext = [turns, deeds = QList{&chooseItem, &closeDocument, &closeOther, &sayIt}]() mutable {
        if (deeds.first()())
            deeds.removeFirst();
        if (deeds.isEmpty())
            turns->stop();
    };
    QObject::connect(turns, &QTimer::timeout, turns, doNext);
    turns->start(1);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(meetPerson)
