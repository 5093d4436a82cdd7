#pragma once

#include "run/logstyle.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <optional>

namespace sealwright {

/// The values behind a document's window. The document reads and writes them; the widgets show them, hold
/// nothing of their own and write back what a person does. All on the main thread.

/// What every control has: it can be hidden and disabled, and tells when anything of it has changed.
class Control : public QObject {
    Q_OBJECT

public:
    bool isHidden() const { return m_isHidden; }
    void setIsHidden(bool isHidden);
    bool isEnabled() const { return m_isEnabled; }
    void setIsEnabled(bool isEnabled);

Q_SIGNALS:
    void changed();

private:
    bool m_isHidden = false;
    bool m_isEnabled = true;
};

/// A shade between black, white level 0, and white, white level 1.
struct GreyColour {
    double white;
    double alpha;
    bool operator==(const GreyColour &) const = default;
};

class TextField : public Control {
    Q_OBJECT

public:
    QString stringValue() const { return m_stringValue; }
    void setStringValue(const QString &value);
    /// Nothing for the usual colour of text.
    std::optional<GreyColour> textColor() const { return m_textColor; }
    void setTextColor(const GreyColour &colour);

    /// Gives the field the keyboard focus.
    void makeFirstResponder() { Q_EMIT focusRequested(); }

Q_SIGNALS:
    void focusRequested();

private:
    QString m_stringValue = QStringLiteral("");
    std::optional<GreyColour> m_textColor;
};

/// A stretch of text that looks the same all through.
struct StyledText {
    QString text;
    bool isBold = false;
    bool isItalic = false;
    bool operator==(const StyledText &) const = default;
};

/// A longer text to read.
class TextView : public Control {
    Q_OBJECT

public:
    QList<StyledText> text() const { return m_text; }
    void setText(const QList<StyledText> &text);

private:
    QList<StyledText> m_text;
};

class Checkbox : public Control {
    Q_OBJECT

public:
    /// 1 is on, 0 is off.
    int state() const { return m_state; }
    void setState(int state);
    bool isOn() const { return m_state == 1; }

private:
    int m_state = 0;
};

/// One item of a popup that stands for something else than its title says.
struct PopupItem {
    QString title;
    QString representedObject;
};

class Popup : public Control {
    Q_OBJECT

public:
    QStringList itemTitles() const { return m_itemTitles; }
    /// Replaces the items. The first one becomes the selected one, unless the present title is among them.
    void setItemTitles(const QStringList &titles);
    /// Replaces the items and selects the first one.
    void setItems(const QList<PopupItem> &items);

    /// The selected item's title; empty for an empty popup.
    QString titleOfSelectedItem() const { return m_title; }
    /// Selects the item; a title that is not among the items leaves the selection as it is.
    void selectItemWithTitle(const QString &title);
    /// What the selected item stands for; empty if none is selected, or if it stands for itself.
    QString representedObjectOfSelectedItem() const;

private:
    QStringList m_itemTitles;
    QStringList m_representedObjects; // by the titles' index, where there are any
    QString m_title;
};

/// What a button or a menu item of a document does.
enum class Action {
    none,
    doSubmit,
    doDirectSubmit,
    doSubmitAgain,
    doCancelDirectSubmit,
    doCancel,
    doStapleOnly,
    doStapleAgain,
    doGoOnWaiting,
    doSignOnly,
    doSignAgain,
    doFetchHistory,
    doInfoForUUIDOnClipboard,
    doInfoForUUIDOfLastUpload,
    doInfoForUUIDInFile,
    doListProviderShortnames,
    doClearStatus,
    doExtraEntitlements,
    doAppPassHelp,
    doTeamProviderHelp,
    doExtraEntitlementsHelp,
    doDropDMGHelp,
    doSetDocumentDefaults,
    doPrint,
    doRunPageLayout,
    doCloseDocument,
    doCloseWindow,
};

class Button : public Control {
    Q_OBJECT

public:
    QString title() const { return m_title; }
    void setTitle(const QString &title);
    /// The key that presses the button together with the host's command key; empty for none.
    QString keyEquivalent() const { return m_keyEquivalent; }
    void setKeyEquivalent(const QString &key);
    QString toolTip() const { return m_toolTip; }
    void setToolTip(const QString &toolTip);
    Action action() const { return m_action; }
    void setAction(Action action);

private:
    QString m_title;
    QString m_keyEquivalent;
    QString m_toolTip;
    Action m_action = Action::none;
};

/// Pages of which one is on show.
class TabView : public Control {
    Q_OBJECT

public:
    /// Counted from 0.
    int selectedIndex() const { return m_selectedIndex; }
    void selectTabViewItemAtIndex(int index);

private:
    int m_selectedIndex = 0;
};

class ProgressIndicator : public Control {
    Q_OBJECT

public:
    bool isAnimating() const { return m_isAnimating; }
    void startAnimation();
    void stopAnimation();

private:
    bool m_isAnimating = false;
};

/// How a stretch of the window log looks.
struct TextAttributes {
    enum class Colour { text, systemRed };

    QString
        fontName; ///< by its name on macOS; a host without it shows its own fixed-width font of that weight
    int pointSize = 0;
    Colour colour = Colour::text;
    bool operator==(const TextAttributes &) const = default;
};

/// The window log: styled text that is appended to and cleared.
class LogText : public Control {
    Q_OBJECT

public:
    struct Run {
        QString text;
        LogStyle style;
        TextAttributes attributes;
    };

    void append(const Run &run);
    void clear();
    const QVector<Run> &runs() const { return m_runs; }
    /// The text without its styles.
    QString string() const;

Q_SIGNALS:
    /// One entry has been added at the end, which a view then scrolls to.
    void appended(const LogText::Run &run);
    void cleared();

private:
    QVector<Run> m_runs;
};

} // namespace sealwright
