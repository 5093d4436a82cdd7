#pragma once

#include "document/steplist.h"

#include <QTabWidget>

#include <optional>

class QJsonObject;

namespace sealwright {

class HistoryPane;
class ItemLook;
class IssueTable;
class MainWinController;

/// What stands beside the log: the steps of the run, what a look at the item tells, and what the service
/// said. The page that has news comes to the front, unless somebody is at work in the one that shows. Main
/// thread.
class SidePane : public QTabWidget {
    Q_OBJECT

public:
    SidePane(MainWinController &document, const ItemLook &look, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    /// With room for the signs that come later. Pixels.
    int widthOfTabs() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void offer(QWidget &page);
    void followRun();
    void heedLook(const QJsonObject &examination);
    void heedIssues();
    void mark(QWidget &page, std::optional<StepState> state);
    void drawSign(const QWidget &page);

    MainWinController &m_document;
    QWidget *m_steps;
    QWidget *m_examination;
    QWidget *m_issues;
    HistoryPane *m_history;
    QHash<const QWidget *, StepState> m_signs; ///< of the pages that have one
    bool m_isRunning = false;
};

} // namespace sealwright
