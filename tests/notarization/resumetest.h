#pragma once

#include "app/preferencekeys.h"
#include "notarization/pollingtest.h"
#include "platform/itempath.h"
#include "run/waitrecords.h"
#include "run/waits.h"
#include "scripting/NSApplication+Scripting.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

/// Submissions whose run has ended while their verdict is still to come.
class Resuming : public Polling {
protected:
    Resuming()
    {
        host.stateFolder = host.item(QStringLiteral("../state"));
        host.preferences.setValue(key::providerNameValue, QStringLiteral("ExampleTeam"));
    }

    /// Uploads, and has the run end as with its process: it says no more, and what it holds is let go of.
    void waitAndEnd()
    {
        wait();
        closeWindow();
    }
    void closeWindow()
    {
        host.document().staplingTimer()->invalidate();
        host.document().window().close();
        host.settle();
    }
    /// In a new document, as a person's.
    void goOn(const QString &name = QStringLiteral("Foo - Submitted"))
    {
        host.application().addedDocument()->commands().resume.goOnInFolder(host.item(name));
        host.settle();
    }
    void goOnToTheEnd(const QString &name = QStringLiteral("Foo - Submitted"))
    {
        goOn(name);
        host.firePolls();
    }

    QString recordsFolder() const { return host.stateFolder + QStringLiteral("/waiting"); }
    QStringList records() const
    {
        return QDir(recordsFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    QString recordFile() const { return recordsFolder() + QStringLiteral("/1234-abcd.json"); }
    QByteArray record() const
    {
        QFile file(recordFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString in(const QString &key) const
    {
        return QJsonDocument::fromJson(record()).object().value(key).toString();
    }
    QStringList waiting() { return host.application().scripting().waiting(); }

    void expectFinished(const QStringList &more = {})
    {
        EXPECT_EQ(host.listing(), QStringList{QStringLiteral("Foo - Notarized")} + more);
        EXPECT_EQ(items::fingerprint(
                      host.item(QStringLiteral("Foo - Notarized/Foo - Unmodified Original/Foo.app"))),
                  original);
        EXPECT_EQ(records(), QStringList());
        ASSERT_TRUE(host.window().sheet);
        EXPECT_EQ(host.window().sheet->alert.messageText, QStringLiteral("Stapling Successful"));
    }
};
