#pragma once

#include "document/documentcommands.h"
#include "platform/scriptcommand.h"
#include "scripting/NSWindow+Scripting.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <limits>

inline constexpr int separateWindow = 1; ///< tags of the items that make documents
inline constexpr int tab = 2;
inline constexpr qint64 least = std::numeric_limits<qint64>::min();
inline constexpr qint64 greatest = std::numeric_limits<qint64>::max();

/// A script that reads and arranges windows, of which the first is called "A".
class WindowScripting : public testing::Test {
protected:
    WindowScripting()
    {
        host.launch();
        host.window().setTitle(QStringLiteral("A"));
    }

    /// A new document in front of the others, as a window or as the last tab of the front window.
    FakeWindow &open(const QString &title, int tag)
    {
        host.application().newDocument(tag);
        host.window().setTitle(title);
        return host.window();
    }
    /// "C", "B" and "A" from front to back.
    void openThreeWindows()
    {
        open(QStringLiteral("B"), separateWindow);
        open(QStringLiteral("C"), separateWindow);
    }
    /// One window with the tabs "A", "B" and "C", of which one shows.
    void openThreeTabs(const QString &visible)
    {
        open(QStringLiteral("B"), tab);
        open(QStringLiteral("C"), tab);
        fake(QStringLiteral("A")).group->setSelectedWindow(fake(visible));
        host.applicationHost.arrangements.clear();
    }

    NSWindowScripting window(const QString &title)
    {
        for (const DocumentPtr &document : host.application().allControllers()) {
            if (document->window().title() == title)
                return NSWindowScripting(*document);
        }
        throw std::runtime_error("no such window");
    }
    FakeWindow &fake(const QString &title) { return TestHost::window(window(title).controller()); }

    /// Does the work as a script's command, and answers with the number and the text of its error; null
    /// without one.
    static QString error(const std::function<void()> &work)
    {
        ScriptReply ended;
        const auto command = std::make_shared<ScriptCommand>(
            QVariantMap(), [&ended](const ScriptReply &reply) { ended = reply; });
        command->execute([&work](const ScriptCommandPtr &) { work(); });
        return ended.isError() ? QString::number(ended.errorNumber) + u' ' + ended.errorText : QString();
    }
    QString setOrderedIndex(const QString &title, qint64 index)
    {
        return error([&] { window(title).setAEOrderedIndex(index); });
    }
    QString setTabOrderedIndex(const QString &title, qint64 index)
    {
        return error([&] { window(title).setAETabOrderedIndex(index); });
    }

    static QString titles(const QList<platform::Window *> &windows)
    {
        QStringList titles;
        for (const platform::Window *const window : windows)
            titles.append(window->title());
        return titles.join(u' ');
    }
    QString order() { return titles(host.applicationHost.windowsFrontToBack()); }
    QString tabsOf(const QString &title) { return titles(fake(title).group->windows()); }
    /// What was done to windows since the last call.
    QStringList arrangements() { return std::exchange(host.applicationHost.arrangements, {}); }

    TestHost host;
};
