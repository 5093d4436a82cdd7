#pragma once

#include "document/steplist.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QPagedPaintDevice;
class QRubberBand;

namespace sealwright {

class CommandBar;
class DropOverlay;
class FindBar;
class ItemHeader;
class ItemLook;
class LogPane;
class MainWinController;
class OutcomeBanner;
class SetupBanner;

/// The widgets of one document, bound to its controls. Its window title is the document's. Opening, closing
/// and sheets are its owner's task.
class DocumentPage : public QWidget {
    Q_OBJECT

public:
    explicit DocumentPage(MainWinController &document);

    MainWinController &document() const { return m_document; }
    void setStatusWord(const QString &word);
    /// How the latest run stands: that of the step that runs, or of its end. Nothing before the first run.
    std::optional<StepState> runState() const;
    /// What goes on, or how it has ended, in few words; empty before the first run.
    QString progress() const;
    /// What names the item and holds the cancel.
    QWidget &header() const;
    /// What tells of the latest run.
    OutcomeBanner &banner() const { return *m_banner; }
    /// What leads to the first steps.
    SetupBanner &setupBanner() const { return *m_setupBanner; }
    /// What searches the log.
    FindBar &findBar() const;
    /// Presses the button that Return stands for, if it is on.
    void pressPrimaryButton();
    /// A page that goes into another frame forgets which of its parts has the keyboard focus, unless it is
    /// told to remember.
    void rememberFocus();
    void restoreFocus();
    /// Puts the text of the log on paper, as it looks here.
    void printLog(QPagedPaintDevice &paper) const;

Q_SIGNALS:
    /// The run has come further, or has ended.
    void progressed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    bool isWithoutItem() const;
    void takeHere(const QString &path);
    QWidget *makeParts();
    void shareRoom();

    MainWinController &m_document;
    ItemLook *m_look;
    ItemHeader *m_header;
    SetupBanner *m_setupBanner;
    OutcomeBanner *m_banner;
    LogPane *m_logPane = nullptr;
    CommandBar *m_commands = nullptr;
    DropOverlay *m_dropOutline; ///< on show while files that can be dropped are over the page
    QList<QWidget *> m_banners; ///< above the parts, each of them now and then
    QPointer<QWidget> m_lastFocus;
};

} // namespace sealwright
