#pragma once

#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace platform {

/// Answers of a sheet, numbered as the buttons stand: the first is 1000, the second 1001.
inline constexpr int alertFirstButton = 1000;
inline constexpr int alertSecondButton = 1001;

struct Alert {
    QString messageText;
    QString informativeText;
    QStringList buttons; ///< empty: the one default button
    /// The title of a further button, the last, for an alert that nothing but the end follows: what might
    /// mend the trouble. Empty: there is none.
    QString remedy = {};
};

struct OpenPanel {
    QString message;
    QStringList allowedFileTypes; ///< extensions without the dot; nothing else may be chosen
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    /// Whether an item of the panel may be chosen; called on the main thread.
    std::function<bool(const QUrl &)> shouldEnable;
};

enum class TabbingMode { automatic = 0, preferred = 1, disallowed = 2 };

/// A place on screen in QuickDraw's form, in points: the origin is the top left of the main screen, and y
/// grows downward. What lies beyond the range of a side is brought to its end.
struct QDRect {
    qint16 top = 0;
    qint16 left = 0;
    qint16 bottom = 0;
    qint16 right = 0;

    bool operator==(const QDRect &other) const = default;
};

class Window;

/// The windows that are gathered as tabs of one frame, of which one shows. Main thread.
class TabGroup {
public:
    virtual ~TabGroup() = default;

    /// In the order of the tabs.
    virtual QList<Window *> windows() const = 0;
    virtual Window *selectedWindow() const = 0;
    virtual void setSelectedWindow(Window &window) = 0;
    /// Gives the window a frame of its own on screen, in front and where the group is. If it showed, a
    /// neighbour shows in its place. Nothing happens to a window that is alone.
    virtual void removeWindow(Window &window) = 0;
    /// Takes the window from its group, or from another place in this one. It shows only if it did so here
    /// before. A place beyond the last one is the last.
    virtual void insertWindow(Window &window, qsizetype atIndex) = 0;
};

/// One document's window, or its page where windows are gathered as tabs. Main thread.
class Window {
public:
    virtual ~Window() = default;

    virtual QString title() const = 0;
    virtual void setTitle(const QString &title) = 0;
    virtual void setSubtitle(const QString &subtitle) = 0;

    virtual void setTabbingMode(TabbingMode mode) = 0;
    /// Brings the window on screen, to the front. One that comes on screen for the first time goes by its
    /// tabbing mode: `preferred` makes it the last tab of the frontmost frame, if there is one; otherwise it
    /// has a frame of its own.
    virtual void show() = 0;

    /// The group that the window is a member of; one that is not tabbed has a group to itself.
    virtual TabGroup &tabGroup() const = 0;
    /// The windows of its group; empty if the window is not tabbed. A host that shows the tab of a window
    /// that is alone gives that one.
    virtual QList<Window *> tabbedWindows() const;

    /// The place of the window's frame in points: the origin is the bottom left of the main screen, and y
    /// grows upward, so that `y` is the lower edge.
    virtual QRect frame() const = 0;
    virtual void setFrame(const QRect &frame) = 0;
    /// The same place in the other form.
    virtual QDRect boundsAsQDRect() const = 0;
    virtual void setBoundsAsQDRect(const QDRect &bounds) = 0;
    /// Puts the frame directly above the window of that number, or in front of all for 0. Where no window has
    /// the number the order stays.
    virtual void orderAbove(qint64 windowNumber) = 0;

    /// Ends an edit in progress in a text field, so that the field has what was typed.
    virtual void endEditing() = 0;
    /// Takes the keyboard focus from whatever has it. False if that refuses to give it up.
    [[nodiscard]] virtual bool makeNothingFirstResponder() = 0;

    /// Closes as a person would: asks `shouldClose` first.
    virtual void performClose() = 0;
    /// Closes without asking. `willClose` is called; a sheet that is still up goes without an answer.
    virtual void close() = 0;

    /// Attaches the question to the window and returns at once. The completion gets the number of the answer;
    /// the sheet has gone by then.
    virtual void beginSheet(const Alert &alert, std::function<void(int)> completion) = 0;
    /// The same with a sheet that is described under that name; what it shows and takes is the owner's. It
    /// stays until `endSheet`, whose code the completion gets when the sheet has gone.
    virtual void beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion) = 0;
    /// Ends that sheet; nothing happens if none is up.
    virtual void endSheet(int returnCode) = 0;
    /// The same with an open panel: the chosen item, or an empty URL when the person cancelled.
    virtual void beginOpenPanel(const OpenPanel &panel, std::function<void(const QUrl &)> completion) = 0;
    /// Asks how to print the text of the window log, and prints it in the styles that it has on screen.
    /// Returns at once; nobody is told whether anything was printed.
    virtual void printLog() = 0;

    /// What the owner has to say to a close.
    struct Delegate {
        std::function<bool()> shouldClose;
        std::function<void()> willClose;
    };
    virtual void setDelegate(Delegate delegate) = 0;
};

inline QList<Window *> Window::tabbedWindows() const
{
    const QList<Window *> members = tabGroup().windows();
    return members.size() > 1 ? members : QList<Window *>();
}

} // namespace platform
