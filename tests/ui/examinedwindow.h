#pragma once

#include "support/items.h"
#include "support/testhost.h"
#include "ui/logprinter.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <functional>

/// A window with "Foo.app", an empty bundle at first, and with a program of the test's that looks at items.
class ExaminedWindow : public testing::Test {
protected:
    ExaminedWindow() { items::makeBundle(host.item(QStringLiteral("Foo.app"))); }
    ~ExaminedWindow() override
    {
        host.settle();
        while (!host.application().allControllers().isEmpty())
            host.document().window().close();
    }

    /// Launches the application. The program is a shell script without its first line.
    void open(const QByteArray &script)
    {
        const QString program = host.item(QStringLiteral("examine"));
        items::makeFile(program, "#!/bin/sh\n" + script, true);
        host.configuration.examineProgram = program;
        host.applicationHost.otherWindows = [this] { return order.frontToBack(); };
        host.takeConfiguration();
        host.launch();
        host.document().originalAppletURL.set(QUrl::fromLocalFile(host.item(QStringLiteral("Foo.app"))));
        host.document().appletNameField.setStringValue(QStringLiteral("Foo.app"));
    }

    QWidget &page() { return dynamic_cast<WidgetWindow &>(host.document().window()).page(); }

    /// Lets the event loop run until the condition holds.
    static void until(const std::function<bool()> &condition)
    {
        ASSERT_TRUE(QTest::qWaitFor(condition, 20'000)) << "waited in vain";
    }

    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory{order, printer};
    TestHost host{&factory};
};
