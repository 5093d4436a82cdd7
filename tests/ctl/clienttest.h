#pragma once

#include "ctl/ctl.h"
#include "dbus/hostonbus.h"
#include "support/items.h"

/// The client as a program, against an application on a bus with one empty document.
class Client : public HostOnBus, protected LastRun {
protected:
    int run(const QStringList &words) { return runOn(host, words); }
    QString element() { return bus::pathElement(host.document().uniqueID); }
    qsizetype documentCount() { return host.application().allControllers().size(); }
    /// Fires polls as they are armed, until the client has ended.
    int endWithPolls(Ctl &ctl)
    {
        host.runUntil([&] {
            host.timers.fireNext();
            return !ctl.isRunning();
        });
        return ctl.end();
    }
};
