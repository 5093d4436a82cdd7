// What a submission costs beside the tools that it runs.

#include "rows.h"

#include "support/items.h"
#include "support/testhost.h"

#include "app/preferencekeys.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int nestedItems = 300;
constexpr double pauseAfterRun = 0.15; // seconds, as a person has it who has set nothing
constexpr double nanosecondsInSecond = 1e9;

struct Spent {
    double all = 0; // seconds
    double inTools = 0;
    int runs = 0; // of tools
};

Spent submit(double pause)
{
    TestHost host;
    host.preferences.setValue(key::toolPause, pause);
    items::makeBundle(host.item(u"Foo.app"_s));
    for (int item = 0; item < nestedItems; ++item)
        items::makeFile(host.item(u"Foo.app/Contents/Frameworks/%1.dylib"_s.arg(item)), items::machO(), true);
    host.launch();
    QElapsedTimer run;
    qint64 inTools = 0;
    Spent spent;
    host.launcher.beforeRun = [&run](const QString &) { run.start(); };
    host.launcher.afterRun = [&](const QString &) {
        inTools += run.nsecsElapsed();
        ++spent.runs;
    };
    spent.all = measuring::seconds([&host] { host.submitToTheEnd(host.item(u"Foo.app"_s)); });
    if (!host.listing().contains(u"Foo - Notarized"_s))
        qFatal("the submission failed");
    spent.inTools = static_cast<double>(inTools) / nanosecondsInSecond;
    return spent;
}

} // namespace

QList<Figure> rows::submissionOfManyItems()
{
    const Spent usual = submit(pauseAfterRun);
    const Spent quickest = submit(0);
    return {{u"a submission of 300 nested items, over its tools and pauses"_s,
             usual.all / (usual.inTools + usual.runs * pauseAfterRun),
             1.05,
             {}},
            {u"    without pauses, over its tools"_s, quickest.all / quickest.inTools, 1.5, {}},
            {u"    what that takes beside its tools, for each run of one"_s,
             (quickest.all - quickest.inTools) * 1000 / quickest.runs, 1, u"ms"_s}};
}
