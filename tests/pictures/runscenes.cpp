// A run as it goes on and as it ends: its steps, and the banner that stays.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/allsteps.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 megabyte = 1'000'000;

void signingOfMany()
{
    Scene scene;
    scene.host.tools.answer(u"codesign"_s, {.hangs = true});
    const QString item = scene.makeItem(u"Example.app"_s);
    scene.document().commands().submit.submitURL(itempath::toUrl(item));
    scene.host.runUntil([&] { return !scene.host.tools.callsOf(u"codesign"_s).isEmpty(); });
    scene.pause();
    scene.document().stepList.advance({.done = 12, .all = 57, .unit = StepList::Parts::Unit::files});
    Scene::draw(scene.window(), u"run-signing.png"_s);
    scene.host.tools.release(u"codesign"_s);
    scene.settle();
}

void uploading()
{
    Scene scene;
    scene.host.tools.answer(u"altool--notarize-app"_s, {.hangs = true});
    const QString item = scene.makeItem(u"Example.app"_s);
    scene.document().commands().submit.submitURL(itempath::toUrl(item));
    scene.host.runUntil([&] { return !scene.host.tools.callsOf(u"altool--notarize-app"_s).isEmpty(); });
    scene.pause();
    scene.host.clock.time = scene.host.clock.time.addSecs(31);
    scene.document().stepList.advance(
        {.done = 340 * megabyte, .all = 900 * megabyte, .unit = StepList::Parts::Unit::bytes});
    Scene::draw(scene.window(), u"run-uploading.png"_s);
    scene.host.tools.release(u"altool--notarize-app"_s);
    scene.settle();
}

void stillWaiting()
{
    Scene scene;
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.draw(u"outcome-waiting.png"_s);
}

void notarized()
{
    Scene scene;
    scene.host.submitToTheEnd(scene.makeItem(u"Example.app"_s));
    scene.settle();
    scene.closeSheet();
    scene.draw(u"outcome-notarized.png"_s);
}

void signedOnly()
{
    Scene scene;
    scene.document().commands().signOnly.signOnlyURL(itempath::toUrl(scene.makeItem(u"Example.app"_s)));
    scene.settle();
    scene.closeSheet();
    scene.draw(u"outcome-signed.png"_s);
}

void failed()
{
    Scene scene;
    scene.host.tools.answer(u"codesign"_s, {.status = 1, .error = "Example.app: errSecInternalComponent\n"});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.settle();
    scene.closeSheet();
    scene.draw(u"outcome-failed.png"_s);
}

void refused()
{
    const QUrl address(u"https://example.com/log"_s);
    Scene scene;
    scene.host.urls.contents.insert(
        address, R"({"status": "Rejected", "statusSummary": "Archive contains critical validation errors",
"issues": [{"severity": "error", "path": "Example.zip/Example.app/Contents/MacOS/helper",
"message": "The binary is not signed with a valid Developer ID certificate.", "architecture": "arm64"},
{"severity": "error", "path": "Example.zip/Example.app/Contents/MacOS/Example",
"message": "The executable does not have the hardened runtime enabled.", "architecture": "x86_64"}]})");
    scene.host.tools.answer(u"altool--notarization-info"_s,
                            {.output = FakeTools::infoReport(u"invalid"_s, address.toString())});
    scene.host.submitToTheEnd(scene.makeItem(u"Example.app"_s));
    scene.settle();
    scene.closeSheet();
    scene.draw(u"outcome-refused.png"_s);
    scene.showPage(2);
    scene.draw(u"issues.png"_s);
}

void cancelled()
{
    Scene scene;
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.document().perform(Action::doCancel);
    scene.settle();
    scene.draw(u"alert-cancelled.png"_s);
    scene.closeSheet();
    scene.draw(u"outcome-cancelled.png"_s);
}

void history()
{
    Scene scene;
    QString page = u"Notarization History - page 0\n\n"
                   "Date                      RequestUUID                          Status      Status Code "
                   "Status Message   \n"
                   "------------------------- ------------------------------------ ----------- ----------- "
                   "---------------- \n"_s;
    const QStringList ends{u"success     0           Package Approved "_s,
                           u"invalid     2           Package Invalid  "_s,
                           u"in progress                              "_s};
    for (int number = 0; number < 14; ++number)
        page += u"2026-11-%1 10:%2:00 +0000 2a%3f1c7-52cd-4be0-9a4e-0c5b1f0e77%4 %5\n"_s
                    .arg(20 - number, 2, 10, QChar(u'0'))
                    .arg(number * 4, 2, 10, QChar(u'0'))
                    .arg(number * 37 % 100, 2, 10, QChar(u'0'))
                    .arg(number + 10)
                    .arg(ends.at(number % 5 == 1   ? 1
                                     : number == 0 ? 2
                                                   : 0));
    scene.document().statusTextView.append({page, LogStyle::plain, {u"Menlo"_s, 12}});
    scene.showPage(3);
    scene.draw(u"history.png"_s);
}

void itemsOverTheWindow()
{
    Scene scene;
    QMimeData data;
    data.setUrls({itempath::toUrl(scene.makeItem(u"Example.app"_s))});
    QWidget &page = dynamic_cast<WidgetWindow &>(scene.document().window()).page();
    QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&page, &enter);
    scene.draw(u"drop.png"_s);
}

} // namespace

void scenes::ofRuns()
{
    for (const auto &scene : {signingOfMany, uploading, stillWaiting, notarized, signedOnly, failed, refused,
                              cancelled, history, itemsOverTheWindow})
        scene();
}
