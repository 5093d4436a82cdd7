#pragma once

namespace platform {

/// Looks for newer versions of the application. Main thread. A host whose packages are kept up to date by the
/// system has none.
class Updater {
public:
    virtual ~Updater() = default;

    /// Whether a request for the list of versions tells what kind of machine this is.
    virtual void setSendsSystemProfile(bool sends) = 0;
};

} // namespace platform
