#include "ui/windoworder.h"

#include "ui/widgetwindow.h"

QList<platform::Window *> WindowOrder::frontToBack() const
{
    QList<platform::Window *> onScreen;
    for (WidgetWindow *const window : m_windows) {
        if (!window->isMinimized())
            onScreen.append(window);
    }
    return onScreen;
}
