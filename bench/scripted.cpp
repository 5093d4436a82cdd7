// Two hundred scripted submissions over the real application, fifty at once.

#include "liveapplication.h"
#include "rows.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int submissions = 200;
constexpr int atOnce = 50;
constexpr double millisecondsInSecond = 1000;

/// Submits as many items, from that one on, and closes their documents when all are answered.
void submitBatch(const LiveApplication &application, int first)
{
    std::vector<std::unique_ptr<QProcess>> clients;
    for (int number = first; number < first + atOnce; ++number) {
        clients.push_back(std::make_unique<QProcess>());
        clients.back()->start(QStringLiteral(SEALWRIGHT_CLIENT),
                              {u"submit"_s, application.item(number), u"--skip-stapling"_s});
    }
    for (const auto &client : clients) {
        if (!client->waitForFinished(-1) || client->exitCode() != 0)
            qFatal("a submission failed: %s", client->readAllStandardError().constData());
    }
    for (const QByteArray &line : LiveApplication::outputOf({u"documents"_s}).split('\n')) {
        if (!line.isEmpty())
            LiveApplication::outputOf({u"close"_s, QString::fromUtf8(line.split('\t').first())});
    }
}

} // namespace

QList<Figure> rows::scriptedSubmissions()
{
    const LiveApplication application(submissions);
    double halfway = 0;
    QElapsedTimer clock;
    clock.start();
    for (int first = 0; first < submissions; first += atOnce) {
        if (first == submissions / 2)
            halfway = application.peakMebibytes();
        submitBatch(application, first);
    }
    const double each = static_cast<double>(clock.elapsed()) / millisecondsInSecond / submissions;
    // What is free goes back to the system or not, as it happens to lie; the peak of a batch is always the
    // same.
    const double grown = application.peakMebibytes() - halfway;
    return {{u"the time of each of 200 scripted submissions, 50 at once"_s, each, 2, u"s"_s},
            {u"    what the second hundred adds to the peak memory"_s, grown, 4, u"MiB"_s}};
}
