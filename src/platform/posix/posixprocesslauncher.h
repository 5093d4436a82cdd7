#pragma once

#include "platform/process.h"

namespace platform {

struct Program;

/// Launches programs, each from the place that the host keeps it in.
class PosixProcessLauncher : public ProcessLauncher {
public:
    /// Answers with the path of the file to launch for the path that a workflow names. Any thread.
    using Locator = std::function<QString(const QString &path)>;

    /// Without a locator a path is itself. The folders of `pathPrefix` stand in front of PATH in the
    /// environment of what is launched.
    explicit PosixProcessLauncher(Locator locate = {}, QStringList pathPrefix = {});

    [[nodiscard]] std::shared_ptr<Process> process(const QString &path,
                                                   const QStringList &arguments) override;
    Outcome launchDetached(const QString &path, const QStringList &arguments) override;

private:
    Program program(const QString &path, const QStringList &arguments) const;

    const Locator m_locate;
    const QStringList m_pathPrefix;
};

} // namespace platform
