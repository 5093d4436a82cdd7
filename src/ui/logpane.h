#pragma once

#include <QWidget>

class QBoxLayout;

namespace sealwright {

class FindBar;
class LogView;
class MainWinController;

/// A document's log with what belongs to it: its caption, what of it is shown, whether it is kept, clearing
/// it and searching it.
class LogPane : public QWidget {
    Q_OBJECT

public:
    /// How much of a small window is left to the log.
    enum class Room { plenty, little };

    explicit LogPane(MainWinController &document, QWidget *parent = nullptr);

    LogView &log() const { return *m_log; }
    FindBar &findBar() const { return *m_findBar; }
    void setRoom(Room room);

private:
    void addCaption(QBoxLayout &rows);
    QWidget *makeFilter();
    QWidget *makeClearButton();

    MainWinController &m_document;
    LogView *m_log;
    FindBar *m_findBar;
};

} // namespace sealwright
