#pragma once

#include "platform/workspace.h"

namespace platform {

/// The applications that Launch Services knows, and the Finder. Public document: Apple's NSWorkspace and
/// NSRunningApplication.
class MacWorkspace : public Workspace {
public:
    bool isRunning(const QString &bundleIdentifier) const override;
    /// Waits until the application has been started, or has not.
    Outcome launchInBackground(const QString &bundleIdentifier) override;
    QString pathForApplication(const QString &bundleIdentifier) const override;
    void revealItem(const QString &path) override;
    void openUrl(const QUrl &url) override;
};

} // namespace platform
