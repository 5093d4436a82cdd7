#include "app/keychaintools.h"

#include "platform/mainqueue.h"
#include "platform/process.h"
#include "platform/workerqueue.h"

#include <QPointer>

namespace sealwright {

namespace {

/// Blocks until the program has ended.
KeychainTools::Answer finished(platform::ProcessLauncher &launcher, const keychain::Command &command)
{
    const auto process = launcher.process(command.program, command.arguments);
    if (!command.input.isNull())
        process->setInput(command.input);
    if (const auto launched = process->launch(); !launched)
        return launched.failure();
    QByteArray output;
    QByteArray error;
    process->waitUntilExit([&output](const QByteArray &chunk) { output += chunk; },
                           [&error](const QByteArray &text) { error += text; });
    output += process->readOutputToEnd();
    error += process->readErrorToEnd();
    if (process->terminationStatus() != 0)
        return platform::Error{keychain::reasonIn(QString::fromUtf8(error))};
    return QString::fromUtf8(output);
}

KeychainTools::Answer allFinished(platform::ProcessLauncher &launcher,
                                  const QList<keychain::Command> &commands)
{
    KeychainTools::Answer answer = QString();
    for (const keychain::Command &command : commands) {
        answer = finished(launcher, command);
        if (!answer)
            break;
    }
    return answer;
}

} // namespace

KeychainTools::KeychainTools(const platform::Host &host, QString program)
    : m_host(host)
    , m_program(std::move(program))
{
}

void KeychainTools::run(const keychain::Command &command, const QObject &context,
                        std::function<void(const Answer &)> then) const
{
    runAll({command}, context, std::move(then));
}

void KeychainTools::runAll(const QList<keychain::Command> &commands, const QObject &context,
                           std::function<void(const Answer &)> then) const
{
    const auto job = [&launcher = m_host.launcher, &mainQueue = m_host.mainQueue, commands,
                      asking = QPointer<const QObject>(&context), then = std::move(then)] {
        Answer answer = allFinished(launcher, commands);
        mainQueue.post([answer = std::move(answer), asking, then] {
            if (asking)
                then(answer);
        });
    };
    m_host.workers.post(job);
}

} // namespace sealwright
