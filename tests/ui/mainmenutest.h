#pragma once

#include "about/aboutcontroller.h"
#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/items.h"
#include "ui/findbar.h"
#include "ui/framewindow.h"
#include "ui/itempanel.h"
#include "ui/logview.h"
#include "ui/preferenceswindow.h"
#include "windowtest.h"

#include <QApplication>
#include <QMenu>

/// The menus of a document's window.
class MainMenuTest : public WindowTest {
protected:
    MainMenuTest()
    {
        until([this] { return widget().isActiveWindow(); });
    }
    ~MainMenuTest() override
    {
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (qobject_cast<PreferencesWindow *>(top))
                delete top;
        }
    }

    QMenu &menu(const QString &name) { return part<QMenu>(name); }

    /// The item with this text, without marked letters and keys, as it is when the menu opens.
    QAction &item(const QString &menuName, const QString &text)
    {
        QMenu &opened = menu(menuName);
        Q_EMIT opened.aboutToShow();
        for (QAction *const action : opened.actions()) {
            if (action->text().remove(u'&').section(u'\t', 0, 0) == text)
                return *action;
        }
        throw std::runtime_error("no such item: " + text.toStdString());
    }
    QAction &againItem()
    {
        Q_EMIT menu(QStringLiteral("fileMenu")).aboutToShow();
        for (QAction *const action : menu(QStringLiteral("fileMenu")).actions()) {
            if (action->objectName() == QLatin1String("doAgainMenuItem"))
                return *action;
        }
        throw std::runtime_error("no again item");
    }
    /// Opens the menu by its letter, as a person does, and presses the item's letter.
    void choose(Qt::Key menuKey, const QString &menuName, Qt::Key itemKey)
    {
        QTest::keyClick(&widget(), menuKey, Qt::AltModifier);
        until([&] { return menu(menuName).isVisible(); });
        QTest::keyClick(&menu(menuName), itemKey);
        until([&] { return !menu(menuName).isVisible(); });
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers) { QTest::keyClick(&widget(), key, modifiers); }
    static QString focused()
    {
        const QWidget *const widget = QApplication::focusWidget(); // none while a window becomes active
        return widget ? widget->objectName() : QString();
    }
};
