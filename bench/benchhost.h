#pragma once

#include "support/testhost.h"

/// The host of a test, but for the services that are measured: those are the ones that a person has.
inline platform::Host benchHost(TestHost &test, platform::MainQueue &queue, platform::FileService &files)
{
    const platform::Host host = test.host();
    return {queue,
            host.workers,
            host.timers,
            host.clock,
            host.launcher,
            files,
            host.urls,
            host.preferences,
            host.workspace,
            host.appleScript,
            host.distributedNotifications,
            host.userNotifications,
            host.application,
            host.pasteboard,
            host.updater};
}
