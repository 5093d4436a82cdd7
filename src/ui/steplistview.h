#pragma once

#include "ui/activewindowtimer.h"

#include <QListView>

namespace sealwright {

class StepList;
class StepListModel;

/// Shows the steps of a document's run beside its log. The time of the step that runs is kept up to the
/// second in the active window alone. The list may go before the view does.
class StepListView : public QListView {
    Q_OBJECT

public:
    explicit StepListView(const StepList &steps, QWidget *parent = nullptr);

    StepListModel &steps() const { return *m_model; }

    /// Room for the longest name in one line, and for the steps of an app.
    QSize sizeHint() const override;
    /// Room for some steps, whose names then take more lines.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void follow(const StepList &steps);
    void offerToKeyboard();
    QSize sizeFor(const QString &name, int rows) const;

    StepListModel *m_model;
    ActiveWindowTimer m_timer;
};

} // namespace sealwright
