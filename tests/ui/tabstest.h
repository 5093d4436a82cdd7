#pragma once

#include "document/documentcommands.h"
#include "scripting/NSWindow+Scripting.h"
#include "ui/framewindow.h"
#include "ui/tabbar.h"
#include "windowtest.h"

#include <QAccessible>

/// One document in a window, to which others come.
class Tabs : public WindowTest {
protected:
    Tabs()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    FrameWindow &frame() { return frameOf(document()); }
    static WidgetWindow &windowOf(MainWinController &document)
    {
        return dynamic_cast<WidgetWindow &>(document.window());
    }
    static FrameWindow &frameOf(MainWinController &document) { return *windowOf(document).frameWindow(); }
    static TabBar &bar(FrameWindow &frame) { return *frame.findChild<TabBar *>(); }
    MainWinController &at(qsizetype index) { return *host.application().allControllers().at(index); }

    /// Two more documents as tabs behind the first: "Untitled", "Untitled-2", "Untitled-3".
    void openTwoMore()
    {
        press(frame(), Qt::Key_T, Qt::ControlModifier);
        press(frame(), Qt::Key_T, Qt::ControlModifier);
        ASSERT_EQ(titles(frame()).size(), 3);
    }

    static void press(FrameWindow &frame, Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        until([&frame] { return frame.isActiveWindow(); });
        QTest::keyClick(&frame, key, modifiers);
        QCoreApplication::processEvents();
    }

    static QStringList titles(const platform::TabGroup &group)
    {
        QStringList titles;
        for (const platform::Window *const window : group.windows())
            titles.append(window->title());
        return titles;
    }
    static QStringList tabTexts(FrameWindow &frame)
    {
        QStringList texts;
        for (int index = 0; index < bar(frame).count(); ++index)
            texts.append(bar(frame).tabText(index));
        return texts;
    }
    /// What each tab says of itself to the mouse and to screen readers. A mark tells the eye the same.
    static QStringList descriptions(FrameWindow &frame)
    {
        QStringList descriptions;
        QAccessibleInterface *const read = QAccessible::queryAccessibleInterface(&bar(frame));
        for (int index = 0; index < bar(frame).count(); ++index) {
            const QString description = bar(frame).tabToolTip(index);
            EXPECT_EQ(read->child(index)->text(QAccessible::Name), description);
            EXPECT_EQ(bar(frame).tabIcon(index).isNull(), description == frame.windows().at(index)->title());
            descriptions.append(description);
        }
        return descriptions;
    }
    static QString selectedTitle(FrameWindow &frame) { return frame.selectedWindow()->title(); }

    static QPoint middleOfTab(FrameWindow &frame, int index) { return bar(frame).tabRect(index).center(); }

    /// Moves the mouse with its button down from the tab to a place relative to the frame's tab bar.
    static void drag(FrameWindow &frame, int index, QPoint to)
    {
        TabBar &tabs = bar(frame);
        const QPoint from = middleOfTab(frame, index);
        QTest::mousePress(&tabs, Qt::LeftButton, {}, from);
        constexpr int steps = 8;
        for (int step = 1; step <= steps; ++step)
            moveTo(tabs, from + (to - from) * step / steps);
    }
    static void moveTo(TabBar &tabs, QPoint position)
    {
        QMouseEvent move(QEvent::MouseMove, position, tabs.mapToGlobal(position), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(&tabs, &move);
    }
    static void letGo(FrameWindow &frame, QPoint at)
    {
        TabBar &tabs = bar(frame);
        QMouseEvent release(QEvent::MouseButtonRelease, at, tabs.mapToGlobal(at), Qt::LeftButton,
                            Qt::NoButton, {});
        QApplication::sendEvent(&tabs, &release);
        QCoreApplication::processEvents();
    }
};
