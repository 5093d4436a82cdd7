#pragma once

#include "platform/window.h"
#include "scripting/scriptproperty.h"

#include <optional>

namespace sealwright {

class MainWinController;

/// What scripts reach on a document's window. A hidden tab is a member of a group on screen that does not
/// show itself; each property says what it does for one. Works whatever the document's status is. Main
/// thread.
///
/// Indexes count from 1; 0 is the index of what was not found. One that cannot be set is an error of the
/// executing command, and nothing has moved then.
/// As short-lived as one wants: it refers to the document and holds nothing else.
class NSWindowScripting {
public:
    explicit NSWindowScripting(MainWinController &owner)
        : document(owner)
    {
    }

    static const QList<ScriptProperty<NSWindowScripting>> &properties();

    /// The place among the windows on screen, front to back; of a hidden tab that of its visible one.
    qint64 AEOrderedIndex() const;
    /// Orders the window's group to the front for 1. Another place is given to the host as a window's number,
    /// and no window of this host has one, so the group stays.
    void setAEOrderedIndex(qint64 index);

    /// Empty for a hidden tab as well as without tabs.
    QList<platform::Window *> AETabbedWindows() const;

    bool AEIsVisible() const;
    /// Shows a hidden tab, or for false the tab beside it. A visible window stays as it is.
    void setAEIsVisible(bool isVisible);

    /// The place among the tabs of its group.
    qint64 AETabOrderedIndex() const;
    void setAETabOrderedIndex(qint64 index);

    bool AEIsTabbed() const;
    /// Takes the window out of its group, a little aside, or has it join the group of the window behind it,
    /// as the last tab but one. The rearmost window joins the one in front of it.
    void setAEIsTabbed(bool isTabbed);

    /// Nothing for a window of which no tab is on screen.
    std::optional<platform::QDRect> AEBoundsAsQDRect() const;
    /// Moves the visible tab, and so the group.
    void setAEBoundsAsQDRect(const platform::QDRect &bounds);

    /// The visible tab of the window's group; itself without tabs.
    platform::Window *AEParentWindow() const;
    /// Moves the window to the end of that window's group.
    void setAEParentWindow(platform::Window &parent);

    QString title() const { return window().title(); }
    /// For messages to those who write scripts.
    QString description() const;
    MainWinController &controller() const { return document; }

private:
    platform::Window &window() const;
    QList<platform::Window *> orderedWindows() const;
    platform::Window *visibleTab() const;
    void leaveGroup();
    void joinNeighbour();

    MainWinController &document;
};

} // namespace sealwright
