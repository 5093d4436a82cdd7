#include "run/runlog.h"

#include "platform/clock.h"
#include "platform/fileservice.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace sealwright {

QString RunLog::noteInFile(const QString &message)
{
    const QString line = m_clock.now().toString(u"HH:mm:ss.zzz"_s) + u": "_s + message + u'\n';
    if (const auto open = handle())
        open->write(line.toUtf8());
    return line;
}

void RunLog::log(const QString &message, LogStyle style)
{
    m_window(noteInFile(message), style);
}

void RunLog::open(const QString &path, const QString &banner)
{
    if (!m_files.isReachable(path) && !m_files.createFile(path))
        return;
    handle.set(m_files.openForAppending(path));
    logToFile(banner);
}

void RunLog::close()
{
    const auto open = handle();
    handle.set(nullptr);
    if (open)
        open->close();
}

} // namespace sealwright
