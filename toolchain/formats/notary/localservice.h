#pragma once

#include "formats/notary/serviceconfig.h"

namespace toolchain::notary {

/// The configuration of the service that is to be asked. Where that is the one of this machine and it does
/// not run, starts `usr/bin/sealwright-notaryd` of the tool root that this program lies in, and waits until
/// it listens. Any number of processes may do so at once; one service comes of it.
[[nodiscard]] platform::Result<ServiceConfig> ensureService();

/// Holds the lock by which the running service is known, from when it begins until its process ends.
class ServiceLock {
public:
    ServiceLock();
    ~ServiceLock();
    ServiceLock(const ServiceLock &) = delete;
    ServiceLock &operator=(const ServiceLock &) = delete;

    /// False if another service runs, or if there is a problem.
    [[nodiscard]] bool isHeld() const { return m_descriptor >= 0; }
    /// Fails where no service can hold it at all.
    [[nodiscard]] const platform::Outcome &opened() const { return m_opened; }
    /// Whether the lock's file still is the one in the state folder; a folder that was removed is nobody's
    /// state.
    [[nodiscard]] bool isInPlace() const;

private:
    int m_descriptor = -1;
    platform::Outcome m_opened;
};

} // namespace toolchain::notary
