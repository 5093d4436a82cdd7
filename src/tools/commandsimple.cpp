#include "tools/commandsimple.h"

#include "platform/process.h"
#include "tools/slwtaskresponse.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

void passOn(const QByteArray &errorText)
{
    std::fwrite(errorText.constData(), 1, static_cast<size_t>(errorText.size()), stderr);
}

} // namespace

QString runCommandSimple(platform::ProcessLauncher &launcher, const QString &commandLine)
{
    const auto task = launcher.process(u"/bin/sh"_s, {u"-c"_s, commandLine});
    if (const auto launched = task->launch(); !launched) {
        passOn(launched.error().toUtf8() + '\n');
        return {};
    }
    QByteArray output;
    task->waitUntilExit([&output](const QByteArray &chunk) { output += chunk; }, passOn);
    output += task->readOutputToEnd();
    passOn(task->readErrorToEnd());
    return decodedUtf8(output).value_or(QString());
}

} // namespace sealwright
