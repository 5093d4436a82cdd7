// Linked into the program: a person at a first start, who lets the window set up all that practice needs.
// What the window offers decides what is pressed, so the program that starts anew by itself is left in peace.

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QAbstractButton *shownButton(const QString &name)
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        auto *const button = window->findChild<QAbstractButton *>(name);
        if (button && button->isVisible() && button->isEnabled())
            return button;
    }
    return nullptr;
}

void meetPerson()
{
    auto *const turns = new QTimer(qApp);
    QObject::connect(turns, &QTimer::timeout, turns,
                     [wanted = QStringList{u"setupPractice"_s, u"practiceButton"_s}]() mutable {
                         QAbstractButton *const button =
                             wanted.isEmpty() ? nullptr : shownButton(wanted.first());
                         if (!button)
                             return;
                         std::printf("%s\n", qPrintable(wanted.takeFirst()));
                         std::fflush(stdout);
                         button->click();
                     });
    turns->start(1);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(meetPerson)
