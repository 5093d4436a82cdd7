#include "altool/progress.h"

#include "support/console.h"

#include <QString>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr auto pause = std::chrono::milliseconds(200);
constexpr double mebibyte = 1 << 20;

} // namespace

ProgressLine::ProgressLine()
    : m_isTerminal(isatty(STDERR_FILENO) == 1)
{
}

ProgressLine::~ProgressLine()
{
    if (m_isOpen)
        printError("\n");
}

void ProgressLine::show(qint64 sent, qint64 size)
{
    const auto now = Clock::now();
    if (!m_isTerminal || (now - m_shown < pause && sent < size))
        return;
    m_shown = now;
    m_isOpen = true;
    const double seconds = std::max(0.001, std::chrono::duration<double>(now - m_start).count());
    const QString line =
        u"\r%1 % of %2 MB, %3 MB/s "_s.arg(QString::number(sent * 100 / std::max<qint64>(size, 1)),
                                           QString::number(double(size) / mebibyte, 'f', 1),
                                           QString::number(double(sent) / mebibyte / seconds, 'f', 1));
    printError(line.toStdString());
}

} // namespace toolchain
