#pragma once

#include "support/testhost.h"
#include "ui/alertbox.h"
#include "ui/logprinter.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QTest>

#include <gtest/gtest.h>

/// An application on a faked host, launched, whose documents have windows made of widgets.
class WindowTest : public testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    MainWinController &document() { return host.document(); }
    WidgetWindow &window() { return dynamic_cast<WidgetWindow &>(document().window()); }
    /// The frame that its window is in, and what is in that frame of this document alone.
    QWidget &widget() { return window().widget(); }
    DocumentPage &page() { return window().page(); }

    /// The part of the window that has this name. One that is missing ends the test.
    template <class Widget>
    Widget &part(const QString &name)
    {
        auto *found = page().findChild<Widget *>(name);
        if (!found)
            found = widget().findChild<Widget *>(name);
        if (!found)
            throw std::runtime_error("no such part: " + name.toStdString());
        return *found;
    }

    /// The sheet that is up; null if there is none.
    AlertBox *sheet();
    /// Waits for a sheet.
    AlertBox &awaitSheet();
    /// Presses the button of the sheet that has this title, and waits until the sheet has gone.
    void answer(const QString &title);

    /// Lets the event loop run until the condition holds.
    static void until(const std::function<bool()> &condition);

    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory{order, printer};
    TestHost host{&factory};
};
