#pragma once

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/steptest.h"

/// Staples an item that was submitted before. The assessing tool accepts it, unless a test says otherwise.
class StapleOnly : public StepTest {
protected:
    StapleOnly()
    {
        using namespace Qt::StringLiterals;
        items::makeBundle(host.item(u"Foo - Submitted/Foo.app"_s));
        items::makeBundle(host.item(u"Elsewhere/Foo.app"_s));
        host.tools.answer(u"spctl"_s, {.error = accepted});
    }

    MainWinController &launched()
    {
        if (!std::exchange(isLaunched, true))
            host.launch();
        return document();
    }

    QUrl url(const QString &name) const { return itempath::toUrl(host.item(name)); }

    /// Starts with the item given and waits for the end.
    void staple(const QString &name)
    {
        launched().commands().stapleOnly.stapleOnly(url(name));
        host.settle();
    }

    /// Chooses the item in the panel as a person; goes no further.
    void choose(const QString &name)
    {
        launched().perform(Action::doStapleOnly);
        host.window().choose(url(name));
    }

    void stapleByScript(const QString &name, bool showingDialogs = false)
    {
        launched();
        runByScript([&] { commands().stapleOnly.scriptedStapleOnly(url(name)); }, showingDialogs);
    }

    void expectStapled(const QString &name)
    {
        EXPECT_EQ(host.tools.callsOf(QStringLiteral("stapler")).value(0).value(3), host.item(name));
    }

    static inline const QByteArray accepted = "Foo.app: accepted\nsource=Notarized Developer ID\n";
};
