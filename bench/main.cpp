// What the program does by itself, measured against the obvious alternative in the same run.

#include "rows.h"

#include <QApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

struct Row {
    const char *name;
    QList<Figure> (*measure)();
};

constexpr Row table[] = {
    {"tool", rows::oneToolRun},
    {"output", rows::muchToolOutput},
    {"walk", rows::bundleWalk},
    {"examine", rows::examination},
    {"copy", rows::workingCopy},
    {"log", rows::windowLog},
    {"submission", rows::submissionOfManyItems},
    {"waiting", rows::waitingDocuments},
    {"documents", rows::manyDocuments},
    {"scripted", rows::scriptedSubmissions},
    {"images", rows::diskImages},
    {"archives", rows::archives},
    {"seal", rows::bundleSeal},
    {"package", rows::packageSigning},
    {"large-signature", rows::signingOfALargeFile},
    {"signatures", rows::signingOfManyItems},
    {"notary", rows::notarization},
};

/// Prints the figure; false if it is over its bar.
bool print(const Figure &figure)
{
    const bool isMet = figure.value <= figure.bar;
    std::printf("%-66s %9.2f %9.2f %-4s %s\n", qPrintable(figure.what), figure.value, figure.bar,
                qPrintable(figure.unit), isMet ? "met" : "MISSED");
    std::fflush(stdout);
    return isMet;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList chosen = QCoreApplication::arguments().mid(1);
    std::printf("%-66s %9s %9s\n", "What", "value", "at most");
    bool areAllMet = true;
    for (const Row &row : table) {
        if (!chosen.isEmpty() && !chosen.contains(QLatin1StringView(row.name)))
            continue;
        for (const Figure &figure : row.measure())
            areAllMet = print(figure) && areAllMet;
    }
    std::printf("%-66s %9.0f %9s MiB\n", "peak memory of the benchmark",
                static_cast<double>(measuring::peakMemory()) / (1024.0 * 1024.0), "");
    return areAllMet ? 0 : 1;
}
