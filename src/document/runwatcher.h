#pragma once

#include "document/mainwincontroller.h"
#include "run/run.h"

namespace sealwright {

/// What stands between a run and the document that has started it: shows the run in the document's fields,
/// and answers what the run must know at its moment. Keeps the document alive for as long as the run. Any
/// thread.
class RunWatcher : public LiveChoices, public Progress {
public:
    RunWatcher(DocumentPtr document, quint64 number, Places places, std::function<void(Run &)> atEnd)
        : m_document(std::move(document))
        , m_number(number)
        , m_shown(std::move(places))
        , m_atEnd(std::move(atEnd))
    {
    }

    ArchiveKind archiveKind() const override;
    QString dropDMGConfiguration() const override;
    bool cancelPressed() const override;
    void uploadAccepted() override;
    bool skipsStapling() const override;

    void began(const Step &step) override;
    void advanced(qsizetype begun, qsizetype all) override;
    void stopped() override;
    void failed(const Failure &failure) override;
    void leftBehind() override;
    void ended(Run &run) override;
    void endedWithUpload() override;
    void moved(const Places &places) override;
    void claimed(std::shared_ptr<platform::FolderClaim> claim) override;
    void changedStatus(QStringView status) override;
    void offersCancel(CancelOffer offer) override;
    void awaitsVerdict(const QString &requestUUID) override;
    void countsFailures(quint64 ordinary, quint64 of239) override;
    void waits(const std::shared_ptr<platform::Timer> &timer, double seconds) override;
    void polls() override;
    void verdictHasCome() override;
    void serviceSaid(const QString &issues) override;

private:
    /// Whether no other run of the document has begun since. The late rest of a cancelled one changes nothing
    /// of what the next one shows.
    bool isLatest() const;
    /// Reports a failure that has not been reported.
    void report();

    const DocumentPtr m_document;
    const quint64 m_number;
    Places m_shown; ///< what the document has been told last
    std::optional<Failure> m_failure; ///< that is still to be reported
    const std::function<void(Run &)> m_atEnd;
};

} // namespace sealwright
