#pragma once

#include "document/documentcommands.h"
#include "notarization/pollingsteps.h"
#include "notarization/requestinfo.h"
#include "platform/itempath.h"
#include "support/steptest.h"

inline const QString infoTool = QStringLiteral("altool--notarization-info");
inline const QString historyTool = QStringLiteral("altool--notarization-history");
inline const QString logAddress = QStringLiteral("https://example.com/log.json");
inline const QString uuid = QStringLiteral("01234567-89ab-cdef-0123-456789abcdef");

/// Looks up a request, which is in progress unless a test says otherwise.
class RequestInfoTest : public StepTest {
protected:
    RequestInfoTest()
    {
        host.launch();
        isLaunched = true;
        beepsAtStart = host.applicationHost.beeps;
        host.tools.answer(infoTool, {.output = FakeTools::infoReport(QStringLiteral("in progress"))});
    }

    void lookUp(const QString &identifier = uuid)
    {
        commands().requestInfo.infoForRequestUUID(identifier);
        host.settle();
    }

    void lookUpLastUpload()
    {
        document().perform(Action::doInfoForUUIDOfLastUpload);
        host.settle();
    }

    void lookUpInFile(const QByteArray &contents)
    {
        const QString path = host.item(QStringLiteral("RequestUUID.txt"));
        items::makeFile(path, contents);
        document().perform(Action::doInfoForUUIDInFile);
        host.window().choose(itempath::toUrl(path));
        host.settle();
    }

    /// Answers the lookup with a report of that status, and names a log that has these contents.
    QString answerWithLog(const QString &status, const QByteArray &log)
    {
        const QByteArray report = FakeTools::infoReport(status, logAddress);
        host.tools.answer(infoTool, {.output = report});
        host.urls.contents.insert(QUrl(logAddress), log);
        return QString::fromUtf8(report);
    }

    /// Leaves marks of work that only an end that clears them takes away.
    void markBusy()
    {
        document().isBusy.set(true);
        document().isSubmitting.set(true);
        document().progressIndicator.startAnimation();
    }

    QString askedFor() { return host.tools.callsOf(infoTool).value(0).value(2); }

    void expectIdle()
    {
        EXPECT_EQ(document().statusString(), QStringLiteral("ready"));
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().isSubmitting());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
    }

    const QString heading = QStringLiteral("Fetching notarizing info for Request UUID %1...\n").arg(uuid);
    int beepsAtStart;
};
