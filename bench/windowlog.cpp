// The window's log under a flood of lines.

#include "rows.h"
#include "stall.h"
#include "support/testhost.h"

#include "platform/qt/qtmainqueue.h"
#include "ui/historymodel.h"
#include "ui/logprinter.h"
#include "ui/logview.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace {

constexpr int manyLines = 100'000;
constexpr int fewLines = 25'000;
constexpr double millisecondsInSecond = 1000;

struct Flood {
    double seconds;
    qint64 stall; ///< milliseconds
};

Flood flood(int lines)
{
    platform::QtMainQueue queue;
    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory(order, printer);
    TestHost test;
    AppDelegate application(test.host({.mainQueue = &queue}), factory, test.configuration);
    const DocumentPtr document = application.addedDocument();
    QCoreApplication::processEvents();
    const Stall stall;
    const double seconds = measuring::seconds([&] {
        onWorker(*document, [&document, lines] {
            for (int line = 0; line < lines; ++line)
                document->logString(u"line %1 of what a tool has printed, as long as they are"_s.arg(line));
        });
        while (document->statusTextView.runs().size() < lines)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
    const qint64 longest = stall.milliseconds();
    test.settle();
    return {seconds, longest};
}

/// The longest stall while all of a long log is hidden and shown again.
qint64 stallOfTheFilter()
{
    LogText log;
    LogView view(log);
    view.resize(800, 600);
    view.show();
    for (int line = 0; line < manyLines; ++line)
        log.append({u"line %1 of what a tool has printed\n"_s.arg(line),
                    line % 10 == 0 ? LogStyle::bold : LogStyle::plain,
                    {u"Menlo"_s, 12}});
    QCoreApplication::processEvents();
    const Stall stall;
    for (const LogFilter filter : {LogFilter::errors, LogFilter::steps, LogFilter::all}) {
        view.setFilter(filter);
        while (!view.isSettled())
            QCoreApplication::processEvents();
    }
    view.setFilter(LogFilter::errors); // and its window is made wider while nearly all of it is hidden
    for (const int width : {810, 820, 830}) {
        view.resize(width, 600);
        do
            QCoreApplication::processEvents();
        while (!view.isSettled());
    }
    return stall.milliseconds();
}

/// The longest time that one of two hundred documents takes to open as a tab, and to be switched to.
qint64 stallOfTheTabs()
{
    constexpr int many = 200;
    constexpr int asTab = 2;
    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory(order, printer);
    TestHost test(&factory);
    test.launch();
    test.settle();
    LongestWork longest;
    while (test.application().allControllers().size() < many)
        longest.measure([&] { test.application().newDocument(asTab); });
    for (const DocumentPtr &document : QList(test.application().allControllers()))
        longest.measure([&] { document->window().show(); });
    for (const DocumentPtr &document : QList(test.application().allControllers()))
        document->window().close();
    test.settle();
    return longest.milliseconds();
}

/// The longest stall while thousands of submissions come into the table, are sorted and searched.
qint64 stallOfTheHistory()
{
    constexpr int submissions = 5000;
    QList<HistoryEntry> entries;
    for (int number = 0; number < submissions; ++number)
        entries.append({u"2019-06-%1 10:00:00 +0000"_s.arg(number % 28 + 1, 2, 10, QChar(u'0')),
                        QString::number(number * 7919 % submissions), u"success"_s, u"0"_s,
                        u"Package Approved"_s});
    HistoryModel history;
    SortedHistory shown(history);
    QTableView table;
    table.setModel(&shown);
    table.setSortingEnabled(true);
    table.show();
    LongestWork longest;
    longest.measure([&] { history.take(entries); });
    longest.measure([&] { table.sortByColumn(HistoryModel::identifier, Qt::AscendingOrder); });
    longest.measure([&] { table.sortByColumn(HistoryModel::date, Qt::DescendingOrder); });
    longest.measure([&] { shown.setFilterFixedString(u"499"_s); });
    longest.measure([&] { shown.setFilterFixedString({}); });
    return longest.milliseconds();
}

} // namespace

QList<Figure> rows::windowLog()
{
    const Flood few = flood(fewLines);
    const Flood many = flood(manyLines);
    const double growth = (many.seconds / manyLines) / (few.seconds / fewLines);
    return {
        {u"a line among 100,000 in the window log, over one among 25,000"_s, growth, 1.5, {}},
        {u"    the longest stall of the main thread meanwhile"_s, static_cast<double>(many.stall), 50,
         u"ms"_s},
        {u"    100,000 lines altogether"_s, many.seconds * millisecondsInSecond, 10'000, u"ms"_s},
        {u"the longest stall while 100,000 lines are hidden and shown"_s,
         static_cast<double>(stallOfTheFilter()), 50, u"ms"_s},
        {u"the longest stall of 200 documents in tabs"_s, static_cast<double>(stallOfTheTabs()), 50, u"ms"_s},
        {u"the longest stall of a history of 5,000 submissions"_s, static_cast<double>(stallOfTheHistory()),
         50, u"ms"_s}};
}
