#pragma once

#include "platform/window.h"

#include <QList>

namespace platform {

class Preferences;

/// The application as the desktop sees it. Main thread.
class ApplicationHost {
public:
    virtual ~ApplicationHost() = default;

    /// Delivers files that were opened with the application while launch kept the main thread busy. A host
    /// that delivers them by itself has nothing to do.
    virtual void deliverPendingOpens() { }
    /// Keeps what a desktop handed over with its request, so that the next window that is shown may come to
    /// the front: a token of the xdg-activation protocol, never empty.
    virtual void setActivationToken(const QString &token) = 0;
    /// Brings the application to the front.
    virtual void activate() = 0;
    /// Ends the application, once the event loop comes to it.
    virtual void terminate() = 0;
    /// Ends the application in the same way, and has it start anew. A host that cannot do that only ends it.
    virtual void relaunch() { terminate(); }
    /// Shows the settings of where the tools are, and holds up the whole application until they are closed.
    virtual void runToolSettings(Preferences &preferences) = 0;
    /// Whether the Option key, or the host's counterpart of it, is held down now.
    virtual bool isOptionKeyDown() const = 0;
    virtual void beep() = 0;
    /// Puts a question to the user that holds up the whole application; answers with the number of the
    /// button.
    virtual int runModal(const Alert &alert) = 0;
    /// Asks for the paper, the orientation and the margins that all logs are printed with from now on. Holds
    /// up the whole application.
    virtual void runPageLayout() = 0;
    /// The document windows on screen, front to back; of a tab group the selected one. Not those that are
    /// minimised.
    virtual QList<Window *> windowsFrontToBack() const = 0;
};

} // namespace platform
