#pragma once

#include "platform/host.h"
#include "platform/result.h"
#include "run/waitrecord.h"

#include <QList>

namespace sealwright {

/// The records of waits, one small file each, so that a wait outlasts the process that has begun it. Any
/// thread.
class WaitRecords {
public:
    explicit WaitRecords(const platform::Host &host);

    /// Writes it whole, in the place of an earlier one of the same identifier. Nobody else may read it.
    platform::Outcome keep(const WaitRecord &record) const;
    void remove(const QString &identifier) const;
    /// Nothing if there is none.
    std::optional<WaitRecord> of(const QString &identifier) const;
    /// Those that can be read, the oldest first.
    QList<WaitRecord> all() const;

private:
    QString path(const QString &identifier) const;

    platform::FileService &m_files;
    const QString m_folder; ///< empty where nothing is to last
};

/// The record of a run's own wait. Worker thread.
class KeptWait {
public:
    explicit KeptWait(const platform::Host &host)
        : m_records(host)
    {
    }

    bool isKept() const { return !m_record.isNone(); }
    const WaitRecord &record() const { return m_record; }
    platform::Outcome keep(const WaitRecord &record);
    /// The item is about to change by what the run itself does.
    void forgetItemState();
    /// The wait is over, and nobody is to go on with it.
    void end();

private:
    const WaitRecords m_records;
    WaitRecord m_record;
};

} // namespace sealwright
