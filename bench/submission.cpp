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

} // namespace

QList<Figure> rows::submissionOfManyItems()
{
    TestHost host;
    host.preferences.setValue(key::toolPause, pauseAfterRun);
    items::makeBundle(host.item(u"Foo.app"_s));
    for (int item = 0; item < nestedItems; ++item)
        items::makeFile(host.item(u"Foo.app/Contents/Frameworks/%1.dylib"_s.arg(item)), items::machO(), true);
    host.launch();
    QElapsedTimer run;
    qint64 inTools = 0;
    int runs = 0;
    host.launcher.beforeRun = [&run](const QString &) { run.start(); };
    host.launcher.afterRun = [&](const QString &) {
        inTools += run.nsecsElapsed();
        ++runs;
    };
    const double all = measuring::seconds([&host] { host.submitToTheEnd(host.item(u"Foo.app"_s)); });
    if (!host.listing().contains(u"Foo - Notarized"_s))
        qFatal("the submission failed");
    const double toolsAndPauses = static_cast<double>(inTools) / nanosecondsInSecond + runs * pauseAfterRun;
    return {
        {u"a submission of 300 nested items, over its tools and pauses"_s, all / toolsAndPauses, 1.05, {}}};
}
