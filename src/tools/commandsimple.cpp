#include "tools/commandsimple.h"

#include "platform/process.h"

#include <QStringDecoder>

#include <cstdio>

using namespace Qt::StringLiterals;

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
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(output);
    return utf8.hasError() ? QString() : text;
}
