// Failures of workflows, as a script is told of them.

#include "dbus/hostonbus.h"
#include "document/applicationinterface.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"

#include <QDBusVariant>
#include <QFileInfo>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

struct FailureRow {
    const char *situation;
    QString command;
    std::function<void(TestHost &)> arrange;
    QString begins; ///< the number and the start of the text
};

void failTool(TestHost &host, const QString &tool)
{
    host.tools.answer(tool, {.status = 1, .error = "it failed\n"});
}

void failOperation(TestHost &host, const QString &failing)
{
    host.files.failure = [failing](const QString &operation, const QString &) {
        return operation == failing ? u"no room"_s : QString();
    };
}

} // namespace

class ScriptFailures : public HostOnBus, public testing::WithParamInterface<FailureRow> { };

TEST_P(ScriptFailures, haveTheNumberOfTheirTitle)
{
    const QVariantMap arguments{{u"at"_s, appURL()}};
    GetParam().arrange(host);
    const QDBusPendingCall call =
        client.begin(documentPath(), bus::documentInterface, GetParam().command, {arguments});
    host.runUntil([&] {
        host.timers.fireNext();
        return call.isFinished();
    });
    const QString failure = failureOf(call.reply());
    EXPECT_TRUE(failure.startsWith(GetParam().begins)) << failure.toStdString();
    host.settle();
}

class AScriptedFailure : public HostOnBus { };

TEST_F(AScriptedFailure, isAnsweredWhenTheFolderHasItsLastName)
{
    failTool(host, u"codesign"_s);
    host.files.failure = [](const QString &operation, const QString &) {
        if (operation == "moveItem"_L1)
            std::this_thread::sleep_for(std::chrono::milliseconds(200)); // a script would be quicker
        return QString();
    };
    const QDBusMessage answer = client.call(documentPath(), bus::documentInterface, u"SignOnly"_s,
                                            {QVariantMap{{u"at"_s, appURL()}}});
    EXPECT_TRUE(failureOf(answer).startsWith(u"N1110"_s)) << failureOf(answer).toStdString();
    EXPECT_TRUE(QFileInfo(host.item(u"Foo - Failed/Foo.app"_s)).isDir());
    host.settle();
}

INSTANTIATE_TEST_SUITE_P(
    Of, ScriptFailures,
    testing::Values(
        FailureRow{"theAppleID", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { host.document().appleIDField.setStringValue({}); },
                   u"N1100 Missing Apple ID: "_s},
        FailureRow{"thePassword", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { host.document().appPassField.setStringValue({}); },
                   u"N1101 Missing Password: "_s},
        FailureRow{"theIdentity", u"SignOnly"_s,
                   [](TestHost &host) {
                       host.document().identitiesPopup.setItemTitles({noIdentitiesPlaceholder.toString()});
                   },
                   u"N1102 No Identities Found: "_s},
        FailureRow{"theCredentials", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { failTool(host, u"altool--notarization-history"_s); },
                   u"N1103 Cannot Continue: "_s},
        FailureRow{"theWorkingFolder", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { failOperation(host, u"createDirectory"_s); },
                   u"N1104 Cannot Create Working Folder: "_s},
        FailureRow{"theCopyWhichHasNoNumber", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { failOperation(host, u"copyItem"_s); }, u"N7 Cannot Copy "_s},
        FailureRow{"theSigning", u"SignOnly"_s, [](TestHost &host) { failTool(host, u"codesign"_s); },
                   u"N1110 Error Signing Code: "_s},
        FailureRow{"theArchive", u"SubmitForNotarizing"_s, [](TestHost &host) { failTool(host, u"ditto"_s); },
                   u"N1113 Error Making Archive: "_s},
        FailureRow{"theUploadWhichHasNoNumber", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { failTool(host, u"altool--notarize-app"_s); },
                   u"N7 Error Uploading File: "_s},
        FailureRow{"theRequest", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { host.tools.answer(u"altool--notarize-app"_s, {.output = "none"}); },
                   u"N1115 No RequestUUID Returned: "_s},
        FailureRow{"theVerdict", u"SubmitForNotarizing"_s,
                   [](TestHost &host) {
                       host.tools.answer(u"altool--notarization-info"_s,
                                         {.output = FakeTools::infoReport(u"invalid"_s)});
                   },
                   u"N1117 Notarization Failed: "_s},
        FailureRow{"theStapling", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { failTool(host, u"stapler"_s); }, u"N1200 Stapling Failed: "_s},
        FailureRow{"theAssessmentThatFails", u"StapleOnly"_s,
                   [](TestHost &host) { failTool(host, u"spctl"_s); }, u"N1112 Error Verifying Signing: "_s},
        FailureRow{"theAssessmentThatRejects", u"StapleOnly"_s,
                   [](TestHost &host) { host.tools.answer(u"spctl"_s, {.error = "Foo.app: rejected\n"}); },
                   u"N1119 Error Verifying Code Signing: "_s},
        FailureRow{"theHistory", u"FetchHistory"_s,
                   [](TestHost &host) { failTool(host, u"altool--notarization-history"_s); },
                   u"N1120 Cannot Fetch History: "_s},
        FailureRow{"theAppleIDOfAHistory", u"FetchHistory"_s,
                   [](TestHost &host) { host.document().appleIDField.setStringValue({}); },
                   u"N1100 Missing Apple ID: "_s},
        FailureRow{"thePasswordOfAHistory", u"FetchHistory"_s,
                   [](TestHost &host) { host.document().appPassField.setStringValue({}); },
                   u"N1101 Missing Password: "_s},
        FailureRow{"theFocusOfAHistory", u"FetchHistory"_s,
                   [](TestHost &host) { host.window().refusesToGiveUpFocus = true; },
                   u"N7 Inteface is blocked."_s},
        FailureRow{"theFocusOfASubmission", u"SubmitForNotarizing"_s,
                   [](TestHost &host) { host.window().refusesToGiveUpFocus = true; },
                   u"N7 Inteface is blocked."_s},
        FailureRow{"theFocusOfAStapling", u"StapleOnly"_s,
                   [](TestHost &host) { host.window().refusesToGiveUpFocus = true; },
                   u"N7 Interface is blocked."_s}),
    [](const auto &row) { return std::string(row.param.situation); });

TEST_F(HostOnBus, aPersonsRunThatFailsIsNoErrorOfTheScriptThatCameBefore)
{
    client.call(documentPath(), bus::documentInterface, u"FetchLog"_s, {QVariantMap()});
    const auto stale = host.document().currentCommand();
    failTool(host, u"altool--notarization-history"_s);
    appURL();
    host.document().commands().submit.doSubmit();
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Cannot Continue"_s);
    EXPECT_EQ(host.document().currentCommand(), stale);
    EXPECT_TRUE(isNoValue(ofApplication(u"LastErrorFrom"_s)));
    EXPECT_EQ(failureOf(setOfDocument(u"AppleID"_s, u"x"_s)),
              u"N1199 Document is busy, status: interacting."_s);
    host.window().answerSheet();
    EXPECT_EQ(failureOf(setOfDocument(u"AppleID"_s, u"x"_s)), u"no error"_s);
}
