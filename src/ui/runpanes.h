#pragma once

#include <QHash>
#include <QSplitter>

namespace sealwright {

class ItemLook;
class LogPane;
class MainWinController;
class SidePane;

/// The log of a document, and beside it its steps and what has been found. A page with a table has half of
/// the room, and the steps what they need, but less than half; where a person moves the divider it stays.
/// Main thread.
class RunPanes : public QSplitter {
    Q_OBJECT

public:
    RunPanes(MainWinController &document, const ItemLook &look, QWidget *parent = nullptr);

    LogPane &log() const { return *m_log; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    enum class Page { steps, table };

    void share();
    void showPage(Page page);

    LogPane *m_log;
    SidePane *m_side;
    Page m_page = Page::steps;
    bool m_isChosen = false; ///< where the divider is
    QHash<Page, QList<int>> m_sizes; ///< that a person chose, or that stood there at first
};

} // namespace sealwright
