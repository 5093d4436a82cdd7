#include <QCoreApplication>
#include <QFile>

#include <qt6keychain/keychain.h>

#include <memory>

#include "support/arguments.h"
#include "support/console.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

constexpr std::string_view usage = R"(Usage: sealwright-secrets read|store|remove ENTRY
       sealwright-secrets --help

Asks the desktop's Secret Service for the other tools of this toolchain. A secret goes over standard input or output, in
hexadecimal digits. Exit status: 0 done, 1 the service refused or is not there, 64 wrong use.
)";

const QString serviceName = u"Sealwright toolchain"_s;

std::unique_ptr<QKeychain::Job> jobFor(const QString &verb)
{
    if (verb == u"read"_s)
        return std::make_unique<QKeychain::ReadPasswordJob>(serviceName);
    if (verb == u"remove"_s)
        return std::make_unique<QKeychain::DeletePasswordJob>(serviceName);
    if (verb != u"store"_s)
        return nullptr;
    constexpr qint64 mostBytes = 4096;
    QFile input;
    auto job = std::make_unique<QKeychain::WritePasswordJob>(serviceName);
    if (input.open(stdin, QIODevice::ReadOnly))
        job->setTextData(QString::fromLatin1(input.read(mostBytes).trimmed()));
    return job;
}

/// Runs the job to its end. What it was asked for goes to standard output.
int carryOut(QKeychain::Job &job, const QString &entry)
{
    job.setAutoDelete(false);
    job.setKey(entry);
    QObject::connect(&job, &QKeychain::Job::finished, QCoreApplication::instance(), &QCoreApplication::quit,
                     Qt::QueuedConnection);
    job.start();
    QCoreApplication::exec();
    if (job.error() != QKeychain::NoError) {
        printError("the Secret Service: " + job.errorString().toStdString() + "\n");
        return 1;
    }
    if (const auto *reading = qobject_cast<QKeychain::ReadPasswordJob *>(&job))
        print(reading->textData().toStdString());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const auto arguments = parseArguments(wordsOf(argc, argv), {{{"-h", "--help"}}});
    if (arguments.has("-h")) {
        print(usage);
        return 0;
    }
    if (!arguments.error.empty() || arguments.operands.size() != 2)
        return refuseArguments("sealwright-secrets", "a verb and an entry are needed", usage);
    const QCoreApplication application(argc, argv);
    const auto job = jobFor(QString::fromStdString(arguments.operands[0]));
    if (!job)
        return refuseArguments("sealwright-secrets", "no such verb", usage);
    return carryOut(*job, QString::fromStdString(arguments.operands[1]));
}
