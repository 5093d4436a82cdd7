// The release script that the documentation gives as an example.

#include "ctl/ctl.h"
#include "dbus/hostonbus.h"
#include "support/items.h"

#include <QFileInfo>
#include <QProcessEnvironment>

using namespace Qt::StringLiterals;

class ReleaseScript : public HostOnBus {
protected:
    void start(const QStringList &arguments, const QString &limit)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, clientFolder + u':' + environment.value(u"PATH"_s));
        environment.insert(u"LIMIT"_s, limit);
        script.setProcessEnvironment(environment);
        script.start(QStringLiteral(SOURCE "/docs/examples/release.sh"), arguments);
        EXPECT_TRUE(script.waitForStarted());
    }

    /// Waits for its end, while polls fire as they are armed.
    int end()
    {
        host.runUntil([this] {
            host.timers.fireNext();
            return script.state() == QProcess::NotRunning;
        });
        error = QString::fromUtf8(script.readAllStandardError());
        return script.exitCode();
    }

    int run(const QStringList &arguments, const QString &limit = u"60"_s)
    {
        start(arguments, limit);
        return end();
    }
    qsizetype documentCount() { return host.application().allControllers().size(); }
    QString dist() const { return host.item(u"dist"_s); }

    QString clientFolder = QFileInfo(QStringLiteral(SEALWRIGHTCTL)).path();
    QProcess script;
    QString error;
};

TEST_F(ReleaseScript, putsTheFinishedItemsIntoAFolder)
{
    appURL();
    appURL(u"Bar.app"_s);
    EXPECT_EQ(run({dist(), host.item(u"Foo.app"_s), host.item(u"Bar.app"_s)}), 0) << error.toStdString();
    EXPECT_EQ(host.listing(u"dist"_s), (QStringList{u"Bar.app"_s, u"Foo.app"_s}));
    EXPECT_EQ(documentCount(), 1) << "it leaves what a person has open, and nothing of its own";
}

TEST_F(ReleaseScript, endsAtTheFirstItemThatFailsAndKeepsItsLog)
{
    appURL();
    appURL(u"Bar.app"_s);
    host.tools.answer(u"altool--notarize-app"_s, {.status = 1, .error = "no luck\n"});
    EXPECT_EQ(run({dist(), host.item(u"Foo.app"_s), host.item(u"Bar.app"_s)}), 1);
    EXPECT_TRUE(error.contains(u"error 7: Error Uploading File: "_s)) << error.toStdString();
    EXPECT_TRUE(error.contains(
        u"release: %1 failed; the log is in %2/Foo.app.log\n"_s.arg(host.item(u"Foo.app"_s), dist())))
        << error.toStdString();
    EXPECT_EQ(host.listing(u"dist"_s), QStringList{u"Foo.app.log"_s});
    EXPECT_TRUE(host.text(u"dist/Foo.app.log"_s).contains(u"no luck"_s));
    EXPECT_EQ(documentCount(), 1);
}

TEST_F(ReleaseScript, cancelsWhatTakesTooLong)
{
    appURL();
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    EXPECT_EQ(run({dist(), host.item(u"Foo.app"_s)}, u"1"_s), 3);
    EXPECT_TRUE(error.contains(u"no verdict"_s)) << error.toStdString();
    host.runUntil([this] { return documentCount() == 1; });
    host.settle();
}

TEST_F(ReleaseScript, tellsAnApplicationThatHasGoneFromAVerdictThatIsLate)
{
    appURL();
    clientFolder = host.item(u"bin"_s); // of a client as it is when its application ends during a submission
    items::makeFile(clientFolder + u"/sealwrightctl"_s,
                    "#!/bin/sh\ncase $1 in new) echo ID ;; submit | get) exit 3 ;; esac\n", true);
    EXPECT_EQ(run({dist(), host.item(u"Foo.app"_s)}), 3);
    EXPECT_EQ(error, u"release: Sealwright has gone while it worked on %1\n"_s.arg(host.item(u"Foo.app"_s)));
}

TEST_F(ReleaseScript, obeysATerminationWhileItsItemIsWorkedOn)
{
    appURL();
    host.tools.answer(u"altool--notarization-history"_s, {.hangs = true});
    start({dist(), host.item(u"Foo.app"_s)}, u"60"_s);
    host.runUntil([this] { return host.tools.order().contains(u"altool--notarization-history"_s); });
    script.terminate();
    EXPECT_EQ(end(), 143) << error.toStdString();
    EXPECT_FALSE(error.contains(u"no verdict"_s)) << error.toStdString();
    host.runUntil([this] { return documentCount() == 1; });
    host.settle();
}

TEST_F(ReleaseScript, refusesAnItemThatIsNotThere)
{
    EXPECT_EQ(run({dist(), host.item(u"Foo.app"_s)}), 1);
    EXPECT_TRUE(error.contains(u"sealwrightctl: error 6: \n"_s)) << error.toStdString();
    EXPECT_EQ(documentCount(), 1);
}
