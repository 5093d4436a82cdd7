#pragma once

#include "document/windowfactory.h"
#include "platform/applicationhost.h"
#include "platform/preferences.h"
#include "support/core.h"

#include <functional>
#include <memory>
#include <optional>

/// The application and its windows as they would be on screen, without a screen: each records what it was
/// asked, and a test answers for the person.

class FakeWindow;

class FakeApplication : public platform::ApplicationHost {
public:
    void setActivationToken(const QString &token) override { activationToken = token; }
    void activate() override { ++activations; }
    void terminate() override { isTerminated = true; }
    void relaunch() override { isRelaunched = isTerminated = true; }
    void runToolSettings(platform::Preferences &preferences) override
    {
        ++toolSettings;
        if (whileInToolSettings)
            whileInToolSettings(preferences);
    }
    bool isOptionKeyDown() const override { return optionKey; }
    void beep() override { ++beeps; }
    int runModal(const platform::Alert &alert) override;
    void runPageLayout() override { ++pageLayouts; }
    QList<platform::Window *> windowsFrontToBack() const override;

    QString activationToken; ///< the latest
    QString tokenWhenShown; ///< what it was when a window was last shown
    int activationsWhenShown = 0; ///< how many there had been then
    int activations = 0;
    bool isTerminated = false;
    bool isRelaunched = false;
    int toolSettings = 0; ///< how often they were opened
    std::function<void(platform::Preferences &)> whileInToolSettings;
    bool optionKey = false;
    int beeps = 0;
    QList<platform::Alert> modalAlerts;
    std::function<int()>
        answerModal; ///< called while the alert is up; without it the first button is pressed
    int pageLayouts = 0;
    QList<FakeWindow *> onScreen; ///< front to back; of a tab group the one that shows
    std::function<QList<platform::Window *>()> otherWindows; ///< in their place, where they are no fakes
    QStringList arrangements; ///< what was done to the order and the tabs of windows
};

class FakeTabGroup : public platform::TabGroup, public std::enable_shared_from_this<FakeTabGroup> {
public:
    explicit FakeTabGroup(FakeApplication &application)
        : m_application(application)
    {
    }

    QList<platform::Window *> windows() const override { return {m_windows.cbegin(), m_windows.cend()}; }
    platform::Window *selectedWindow() const override;
    void setSelectedWindow(platform::Window &window) override;
    void removeWindow(platform::Window &window) override;
    void insertWindow(platform::Window &window, qsizetype atIndex) override;

    /// Lets go of a window that is about to be elsewhere, or nowhere.
    void release(FakeWindow &window);

private:
    void show(FakeWindow *window);

    FakeApplication &m_application;
    QList<FakeWindow *> m_windows;
    FakeWindow *m_selected = nullptr;
};

class FakeWindow : public platform::Window {
public:
    explicit FakeWindow(FakeApplication &application);
    ~FakeWindow() override;

    struct Sheet {
        platform::Alert alert;
        std::function<void(int)> completion;
    };
    struct NamedSheet {
        QString interfaceName;
        std::function<void(int)> completion;
    };
    struct Panel {
        platform::OpenPanel panel;
        std::function<void(const QUrl &)> completion;
    };

    QString title() const override { return m_title; }
    void setTitle(const QString &title) override { m_title = title; }
    void setSubtitle(const QString &subtitle) override { subtitles.append(subtitle); }
    void setTabbingMode(platform::TabbingMode mode) override { tabbingModes.append(mode); }
    void show() override;
    void endEditing() override { ++editsEnded; }
    [[nodiscard]] bool makeNothingFirstResponder() override;
    void performClose() override;
    void close() override;
    void beginSheet(const platform::Alert &alert, std::function<void(int)> completion) override;
    void beginOpenPanel(const platform::OpenPanel &panel,
                        std::function<void(const QUrl &)> completion) override;
    void printLog() override { ++prints; }
    void beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion) override;
    void endSheet(int returnCode) override;
    void setDelegate(Delegate delegate) override { m_delegate = std::move(delegate); }
    platform::TabGroup &tabGroup() const override { return *group; }
    QList<platform::Window *> tabbedWindows() const override;
    QRect frame() const override { return place; }
    void setFrame(const QRect &frame) override;
    platform::QDRect boundsAsQDRect() const override { return bounds; }
    void setBoundsAsQDRect(const platform::QDRect &newBounds) override { bounds = newBounds; }
    void orderAbove(qint64 windowNumber) override;

    /// Answers the sheet that is up (1000 is the first button) or chooses in the panel that is up.
    void answerSheet(int answer = platform::alertFirstButton);
    void choose(const QUrl &url);

    QStringList subtitles;
    QList<platform::TabbingMode> tabbingModes;
    QList<platform::TabbingMode> modesWhenShown;
    int editsEnded = 0;
    int focusesTaken = 0;
    int prints = 0;
    bool refusesToGiveUpFocus = false;
    bool isClosed = false;
    std::optional<Sheet> sheet; ///< that is up now
    std::optional<NamedSheet> namedSheet;
    std::optional<Panel> panel;
    QList<platform::Alert> sheets; ///< all that have been up
    std::shared_ptr<FakeTabGroup> group;
    QRect place{100, 200, 920, 700};
    platform::QDRect bounds;
    bool showsTabWhenAlone = false;

private:
    FakeApplication &m_application;
    Delegate m_delegate;
    QString m_title;
};

class FakePanel : public platform::Panel {
public:
    /// What has been asked of all panels made with it.
    struct Uses {
        int made = 0;
        int centered = 0;
        int shown = 0;
    };

    explicit FakePanel(Uses &uses)
        : m_uses(uses)
    {
        ++m_uses.made;
    }
    void center() override { ++m_uses.centered; }
    void show() override { ++m_uses.shown; }

private:
    Uses &m_uses;
};

class FakeWindowFactory : public WindowFactory {
public:
    explicit FakeWindowFactory(FakeApplication &application)
        : m_application(application)
    {
    }
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(MainWinController &document) override;
    [[nodiscard]] std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &controller) override;

    FakePanel::Uses aboutPanel;

private:
    FakeApplication &m_application;
};
