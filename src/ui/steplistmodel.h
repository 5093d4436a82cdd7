#pragma once

#include "document/steplist.h"

#include <QAbstractListModel>
#include <QPointer>

namespace sealwright {

/// The steps of a run as rows of text, and while the run waits for polls one more row that tells about them.
/// The list may go before the model does.
class StepListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        stateRole = Qt::UserRole, ///< a StepState; invalid for the row about the polls
        durationRole, ///< "0:12"; null for a step that has not begun and for the row about the polls
        partsRole ///< "12 of 57"; empty where nothing is known
    };

    explicit StepListModel(const StepList &steps, QObject *parent = nullptr);

    /// Whose notary service the steps name.
    enum class Service { apples, ofThisMachine };
    void setService(Service service);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// The step that runs; invalid if none does.
    QModelIndex running() const;

private:
    void refresh();
    void refreshRows();
    void setWaitText(const QString &text);
    bool hasSameSteps() const;
    QString durationText(const StepList::Row &row) const;
    QString partsText(const StepList::Row &row) const;
    QString spokenText(const StepList::Row &row) const;
    QString nameOf(const Step &step) const;
    QVariant waitData(int role) const;

    QPointer<const StepList> m_steps;
    QList<StepList::Row> m_rows;
    Service m_service = Service::apples;
    QString m_waitText; ///< null if the run does not wait for polls
};

/// Minutes and seconds, or hours too where there are any: "0:07", "1:02:03".
[[nodiscard]] QString durationText(qint64 seconds);

/// "Next check at 14:05:30 · 7 checks, 1 failed", in the clock's time zone.
[[nodiscard]] QString waitText(const StepList::Wait &wait);

} // namespace sealwright
