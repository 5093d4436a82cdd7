#pragma once

#include "dbus/hostonbus.h"

#include <QDBusArgument>

/// A script that reads and writes the application's properties.
class ApplicationProperties : public HostOnBus {
protected:
    ApplicationProperties() { host.preferences.takeChanges(); }

    QVariant get(const QString &name) { return ofApplication(name); }
    QDBusMessage set(const QString &name, const QVariant &value) { return setOfApplication(name, value); }
    void expectTaken(const QString &name, const QVariant &value)
    {
        EXPECT_EQ(failureOf(set(name, value)), QStringLiteral("no error")) << name.toStdString();
        EXPECT_TRUE(host.preferences.isSaved) << name.toStdString();
    }
    QVariant stored(const QString &key) const { return host.preferences.stored().value(key); }
    QVariantMap getAll()
    {
        const QDBusMessage answer = client.call(bus::applicationPath, bus::propertiesInterface,
                                                QStringLiteral("GetAll"), {bus::applicationInterface});
        return qdbus_cast<QVariantMap>(answer.arguments().value(0));
    }
};

/// The same with those of a document.
class DocumentProperties : public HostOnBus {
protected:
    DocumentProperties() { host.preferences.takeChanges(); }
    // Whatever a test does to a document, the preferences stay as they are.
    ~DocumentProperties() override { EXPECT_TRUE(host.preferences.takeChanges().isEmpty()); }

    QVariant get(const QString &name) { return ofDocument(name); }
    QDBusMessage set(const QString &name, const QVariant &value) { return setOfDocument(name, value); }
    void expectTaken(const QString &name, const QVariant &value)
    {
        EXPECT_EQ(failureOf(set(name, value)), QStringLiteral("no error")) << name.toStdString();
    }
    void expectBusy(const QString &name, const QVariant &value)
    {
        EXPECT_EQ(failureOf(set(name, value)), QStringLiteral("N1199 Document is busy, status: waiting."))
            << name.toStdString();
    }
};
