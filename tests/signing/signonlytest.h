#pragma once

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/steptest.h"

/// Signs Foo.app, which has a nested bundle and a main script, or whatever else a test makes.
class SignOnly : public StepTest {
protected:
    SignOnly()
    {
        using namespace Qt::StringLiterals;
        host.files.sortsListings = true;
        items::makeBundle(host.item(u"Foo.app"_s));
        items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Inner.bundle"_s));
        items::makeFile(host.item(u"Foo.app/Contents/Resources/Scripts/main.scpt"_s), "script");
        original = items::fingerprint(host.item(u"Foo.app"_s));
    }

    MainWinController &launched()
    {
        if (!std::exchange(isLaunched, true))
            host.launch();
        return document();
    }

    /// Starts as the again item and a person's choice do in the end, and waits for the end.
    void sign(const QString &name)
    {
        start(name);
        host.settle();
    }

    void start(const QString &name)
    {
        launched().commands().signOnly.signOnlyURL(itempath::toUrl(host.item(name)));
    }

    QByteArray original;
};
