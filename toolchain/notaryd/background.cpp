#include "notaryd/background.h"

#include "support/console.h"

#include <QString>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

int fail(const QString &text)
{
    toolchain::printError("sealwright-notaryd: " + text.toStdString() + "\n");
    return 1;
}

void letGoOfTerminal()
{
    setsid();
    if (chdir("/") != 0)
        return;
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int descriptor : {0, 1, 2})
        dup2(null, descriptor);
    close(null);
}

/// What the starter had open is no business of the service's.
void closeInherited(int kept)
{
    const int moved = dup2(kept, 3);
    close_range(unsigned(moved) + 1, ~0U, 0);
}

/// Waits until the service in the background listens, and says what it said.
int reportStart(int descriptor)
{
    QByteArray text;
    std::array<char, 4096> block;
    ssize_t length = 0;
    while (!text.contains('\n') && (length = read(descriptor, block.data(), block.size())) > 0)
        text.append(block.data(), length);
    if (!text.startsWith('+'))
        return fail(text.isEmpty() ? u"the service ended at once"_s
                                   : QString::fromUtf8(text.mid(1)).trimmed());
    toolchain::print(text.mid(1).toStdString());
    return 0;
}

} // namespace

void Starter::tell(const QByteArray &text)
{
    if (m_descriptor < 0)
        return;
    static_cast<void>(!write(m_descriptor, text.constData(), std::size_t(text.size())));
    close(std::exchange(m_descriptor, -1));
}

int serveInBackground(const std::function<int(Starter)> &serve)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return fail(u"no pipe can be made"_s);
    const pid_t child = fork();
    if (child < 0)
        return fail(u"no process can be made"_s);
    if (child > 0) {
        close(ends[1]);
        return reportStart(ends[0]);
    }
    letGoOfTerminal();
    closeInherited(ends[1]);
    _exit(serve(Starter(3)));
}

} // namespace notaryd
