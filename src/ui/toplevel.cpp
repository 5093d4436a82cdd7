#include "ui/toplevel.h"

#include <QApplication>
#include <QScrollArea>
#include <QShortcut>

void toplevel::bringToFront(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
}

void toplevel::closeByKeys(QWidget &window)
{
    for (const QKeySequence &key : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)})
        QObject::connect(new QShortcut(key, &window), &QShortcut::activated, &window, &QWidget::close);
}

void toplevel::closeCompletions(const QWidget &window)
{
    QWidget *const popup = QApplication::activePopupWidget();
    const QWidget *const completed = popup ? popup->focusProxy() : nullptr;
    if (completed && window.isAncestorOf(completed))
        popup->close();
}

void toplevel::keepFocusInSight(QScrollArea &area)
{
    QObject::connect(qApp, &QApplication::focusChanged, &area, [&area](QWidget *, QWidget *now) {
        if (now && area.isAncestorOf(now))
            area.ensureWidgetVisible(now);
    });
}
