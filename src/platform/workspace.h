#pragma once

#include "platform/result.h"

#include <QString>
#include <QUrl>

namespace platform {

/// The applications on the host, and what it shows to the user. Main thread, save for what says otherwise.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Whether an application with this bundle identifier is running.
    virtual bool isRunning(const QString &bundleIdentifier) const = 0;

    /// Starts the application in the background. Fails when it is not installed or cannot be started.
    virtual Outcome launchInBackground(const QString &bundleIdentifier) = 0;

    /// The path of the installed application; null if there is none.
    virtual QString pathForApplication(const QString &bundleIdentifier) const = 0;

    /// Shows the item, selected, in the file viewer.
    virtual void revealItem(const QString &path) = 0;

    /// Opens a web page or starts a mail. Whether it worked is not told.
    virtual void openUrl(const QUrl &url) = 0;
};

} // namespace platform
