#pragma once

#include "dbus/busclient.h"
#include "scripting/dbus/scriptingbus.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <functional>

/// What a script sends and gets for no value.
inline const QVariant nothing = QVariantList();

/// A launched application on the bus, with one empty document, and a script.
class HostOnBus : public testing::Test {
protected:
    HostOnBus()
        : HostOnBus([](TestHost &) {})
    {
    }
    /// With a configuration that the function has changed.
    explicit HostOnBus(const std::function<void(TestHost &host)> &prepare)
        : bus(prepared(host, prepare).application())
    {
        host.launch();
        const auto registered = bus.registerOnSessionBus();
        EXPECT_TRUE(registered) << registered.error().toStdString();
    }

    QString path(MainWinController &document) const
    {
        return bus::documentsPath + u'/' + bus::pathElement(document.uniqueID);
    }
    QString documentPath() { return path(host.document()); }
    QString windowPath()
    {
        return client.get(documentPath(), bus::documentInterface, QStringLiteral("Window"))
            .value<QDBusObjectPath>()
            .path();
    }

    /// The URL, as scripts give it, of an app bundle that can be submitted.
    QString appURL(const QString &name = QStringLiteral("Foo.app"))
    {
        items::makeBundle(host.item(name));
        return url(name);
    }
    QString url(const QString &name) const
    {
        return QUrl::fromLocalFile(host.item(name)).toString(QUrl::FullyEncoded);
    }

    /// Begins a submission in the document that stays in its first tool until it is cancelled.
    QDBusPendingCall beginEndlessSubmission()
    {
        host.tools.answerRun(QStringLiteral("altool--notarization-history"), 1, {.hangs = true});
        const QDBusPendingCall call = client.beginSubmit({{QStringLiteral("at"), appURL()}}, documentPath());
        waitForCredentialCheck();
        return call;
    }
    /// Waits until the first tool of a submission runs; before that a cancel has nothing to end.
    void waitForCredentialCheck(qsizetype run = 1)
    {
        host.runUntil([this, run] {
            return host.tools.callsOf(QStringLiteral("altool--notarization-history")).size() >= run;
        });
    }
    void cancel() { client.call(documentPath(), bus::documentInterface, QStringLiteral("Cancel")); }

    // Properties of the application and of the document that was added last.
    QVariant ofApplication(const QString &name)
    {
        return client.get(bus::applicationPath, bus::applicationInterface, name);
    }
    QVariant ofDocument(const QString &name)
    {
        return client.get(documentPath(), bus::documentInterface, name);
    }
    QDBusMessage setOfApplication(const QString &name, const QVariant &value)
    {
        return client.set(bus::applicationPath, bus::applicationInterface, name, value);
    }
    QDBusMessage setOfDocument(const QString &name, const QVariant &value)
    {
        return client.set(documentPath(), bus::documentInterface, name, value);
    }
    QDBusMessage makeDocument(const QVariantMap &properties = {})
    {
        return client.call(bus::applicationPath, bus::applicationInterface, QStringLiteral("MakeDocument"),
                           {properties});
    }

    TestHost host;
    ScriptingBus bus;
    BusClient client{host};

private:
    static TestHost &prepared(TestHost &host, const std::function<void(TestHost &host)> &prepare)
    {
        prepare(host);
        host.takeConfiguration();
        return host;
    }
};
