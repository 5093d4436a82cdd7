#pragma once

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

/// One document's window, or its page where windows are gathered as tabs. Main thread.
class Window {
public:
    virtual ~Window() = default;

    virtual QString title() const = 0;
    virtual void setTitle(const QString &title) = 0;
    virtual void setSubtitle(const QString &subtitle) = 0;

    virtual void setTabbingMode(TabbingMode mode) = 0;
    /// Brings the window on screen, to the front.
    virtual void show() = 0;

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

    /// The windows of this window's tab group in their order, itself among them; empty outside of one.
    virtual QList<Window *> tabbedWindows() const = 0;
};

} // namespace platform
