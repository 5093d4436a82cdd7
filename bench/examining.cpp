// A look at a big app.

#include "rows.h"
#include "stall.h"

#include "platform/itempath.h"
#include "platform/qt/qtmainqueue.h"
#include "support/items.h"
#include "support/testhost.h"
#include "ui/logprinter.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 1000;
constexpr int filesInFolder = 100;
constexpr double mebibyte = 1024 * 1024;

QByteArray sampleCode()
{
    QFile file(QString::fromUtf8(SAMPLE_CODE));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("there is no sample code");
    return file.readAll();
}

void makeApp(const QString &app)
{
    const QByteArray code = sampleCode();
    items::makeBundle(app);
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = app + u"/Contents/Resources/folder %1"_s.arg(folder);
        items::makeFolder(path);
        items::makeFile(path + u"/tool"_s, code, true);
        for (int file = 0; file < filesInFolder; ++file)
            items::makeFile(path + u"/file %1.png"_s.arg(file), QByteArray(4900, 'x'));
    }
}

/// Whatever is found: the status is another one where something would be refused.
QStringList lookAt(const QString &app)
{
    return {u"/bin/sh"_s, u"-c"_s, u"\"$0\" \"$1\" > /dev/null || test $? = 1"_s, QString::fromUtf8(EXAMINE),
            app};
}

/// The longest stall of a window in which the app is chosen, until what is found is on show.
qint64 stallOfTheWindow(const QString &app)
{
    platform::QtMainQueue queue;
    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory(order, printer);
    TestHost test;
    test.configuration.examineProgram = QString::fromUtf8(EXAMINE);
    AppDelegate application(test.host({.mainQueue = &queue}), factory, test.configuration);
    const DocumentPtr document = application.addedDocument();
    const auto &page = dynamic_cast<WidgetWindow &>(document->window()).page();
    const auto *const tree = page.findChild<QTreeWidget *>(u"examineTree"_s);
    QCoreApplication::processEvents();
    const Stall stall;
    document->originalAppletURL.set(itempath::toUrl(app));
    document->appletNameField.setStringValue(u"Big.app"_s);
    while (tree->topLevelItemCount() < folders)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    const qint64 longest = stall.milliseconds();
    test.settle();
    return longest;
}

} // namespace

QList<Figure> rows::examination()
{
    const QTemporaryDir place;
    const QString app = place.filePath(u"Big.app"_s);
    makeApp(app);
    const double ratio = measuring::ratio(
        3, [&app] { measuring::runDiscarding(lookAt(app)); },
        [&app] {
            measuring::runDiscarding({u"/usr/bin/find"_s, app, u"-type"_s, u"f"_s, u"-exec"_s, u"head"_s,
                                      u"-q"_s, u"-c"_s, u"4096"_s, u"{}"_s, u"+"_s});
        });
    const double memory = double(measuring::peakMemoryOf(lookAt(app))) / mebibyte;
    return {
        {u"examining 1,000 Mach-O files and 100,000 others, over find and head"_s, ratio, 2, {}},
        {u"    peak memory of that"_s, memory, 100, u"MiB"_s},
        {u"    the longest stall of a window that shows it"_s, double(stallOfTheWindow(app)), 50, u"ms"_s}};
}
