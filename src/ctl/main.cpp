#include "ctl/commandline.h"
#include "ctl/commands.h"
#include "ctl/output.h"

#include <QCoreApplication>

#include <clocale>
#include <cstdlib>

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace sealwright;

namespace {

/// Release machines often have no locale. Names of files are UTF-8 there too, and the log on standard error
/// is no place for a warning about it.
void ensureUtf8()
{
    std::setlocale(LC_ALL, "");
    if (QByteArrayView(nl_langinfo(CODESET)) != "UTF-8")
        setenv("LC_ALL", "C.UTF-8", 1);
}

/// A stream that is closed must not become whatever is opened next, such as the connection to the bus. What
/// is written to it fails.
void occupyStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) [[maybe_unused]]
            const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

int exitWith(ExitStatus status, const QString &error)
{
    if (!error.isNull())
        output::printError(u"sealwrightctl: "_s + error);
    return static_cast<int>(status);
}

/// Ends what has nothing to do but print.
int exitHavingPrinted()
{
    const QString failure = output::failure();
    return exitWith(failure.isNull() ? ExitStatus::done : ExitStatus::error, failure);
}

int run(const Request &request)
{
    const Client client;
    if (!client.isConnected())
        return exitWith(ExitStatus::noAnswer, u"there is no session bus"_s);
    const Answer answer = carryOut(request, client);
    const QString outputFailure = output::failure();
    if (answer && !outputFailure.isNull())
        return exitWith(ExitStatus::error, outputFailure);
    return exitWith(answer.status, answer.error);
}

} // namespace

int main(int argc, char **argv)
{
    occupyStandardStreams();
    ensureUtf8();
    const QCoreApplication application(argc, argv);
    const Request request = parseCommandLine(QCoreApplication::arguments().mid(1));
    switch (request.kind) {
    case Request::Kind::help:
        output::printText(helpText());
        return exitHavingPrinted();
    case Request::Kind::version:
        output::print({u"sealwrightctl "_s + QString::fromLatin1(SEALWRIGHT_VERSION)});
        return exitHavingPrinted();
    case Request::Kind::wrongUse:
        return exitWith(ExitStatus::wrongUse,
                        request.problem + u"\nTry 'sealwrightctl --help' for more information."_s);
    case Request::Kind::run:
        break;
    }
    // The library's thread may be taking a late message from the bus, and warns if it finds the types of
    // messages destroyed by an ordinary exit. All output has been flushed.
    std::quick_exit(run(request));
}
