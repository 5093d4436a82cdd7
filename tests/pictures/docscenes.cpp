// The pictures that the pages of docs/ show.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "ui/examinepane.h"

#include <QCoreApplication>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

void emptyDocument()
{
    Scene scene;
    scene.draw(u"empty.png"_s);
}

void running()
{
    Scene scene;
    scene.host.tools.answer(u"ditto"_s, {.hangs = true});
    const QString item = scene.makeItem(u"Example.app"_s);
    scene.document().commands().submit.submitURL(itempath::toUrl(item));
    scene.host.runUntil([&] { return !scene.host.tools.callsOf(u"ditto"_s).isEmpty(); });
    QCoreApplication::processEvents();
    Scene::draw(scene.window(), u"running.png"_s);
    scene.host.tools.release(u"ditto"_s);
    scene.settle();
}

void waitingAndSuccess()
{
    Scene scene;
    scene.host.tools.answerRun(u"altool--notarization-info"_s, 1,
                               {.output = FakeTools::infoReport(u"in progress"_s)});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.host.timers.fireNext();
    scene.draw(u"waiting.png"_s);
    scene.host.firePolls();
    scene.draw(u"success.png"_s);
}

void failure()
{
    Scene scene;
    scene.host.tools.answer(u"codesign"_s, {.status = 1, .error = "Example.app: errSecInternalComponent\n"});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.draw(u"failure.png"_s);
}

void directSubmit()
{
    Scene scene;
    scene.host.application().applicationOpenFiles({scene.makeItem(u"Example.app"_s)});
    scene.window().resize(1024, 768);
    scene.draw(u"direct-submit.png"_s);
}

void examination()
{
    Scene scene;
    scene.host.application().applicationOpenFiles({scene.makeItem(u"Example.app"_s)});
    scene.window().resize(1280, 768);
    scene.showPage(1);
    scene.settle();
    scene.window().findChild<ExaminePane *>()->setExamination(
        QJsonDocument::fromJson(R"({"item": "/items/Example.app", "refused": true, "code": [
{"path": ".", "kind": "app", "order": 3, "reason": null, "architectures": ["x86_64", "arm64"],
 "signature": {"state": "none"}},
{"path": "Contents/Frameworks/Greeting.framework", "kind": "framework", "order": 1, "reason": null,
 "architectures": ["x86_64", "arm64"], "signature": {"state": "none"}},
{"path": "Contents/PlugIns/Extra.plugin", "kind": "bundle", "order": 2, "reason": null, "architectures": ["arm64"],
 "signature": {"state": "none"}}],
"findings": [{"rule": "unsigned-code", "severity": "error", "path": "Contents/Resources/helpers.zip/helper",
"architecture": "arm64", "message": "The binary is not signed.",
"advice": "Sign it before you pack it: what lies in an archive stays as it is."}]})")
            .object());
    scene.draw(u"examine.png"_s);
}

void providers()
{
    Scene scene;
    scene.host.tools.answer(u"altool--list-providers"_s,
                            {.output = R"(<plist version="1.0"><dict><key>providers</key><array>
<dict><key>ProviderShortname</key><string>ExampleCompany</string><key>ProviderName</key><string>Example Company</string>
<key>WWDRTeamID</key><string>ABCDE12345</string></dict>
<dict><key>ProviderShortname</key><string>JaneDoe</string><key>ProviderName</key><string>Jane Doe</string>
<key>WWDRTeamID</key><string>FGHIJ67890</string></dict></array></dict></plist>)"});
    scene.document().commands().providers.doListProviderShortnames();
    scene.draw(u"providers.png"_s);
}

void tabs()
{
    Scene scene;
    scene.host.submitToTheEnd(scene.makeItem(u"Example.app"_s));
    scene.host.application().newDocument(2);
    scene.window().resize(1024, 768);
    scene.draw(u"tabs.png"_s);
}

} // namespace

void scenes::ofTheDocuments()
{
    for (const auto &scene :
         {emptyDocument, running, waitingAndSuccess, failure, directSubmit, examination, providers, tabs})
        scene();
}
