#pragma once

#include "document/documentextension.h"
#include "run/run.h"

#include <optional>

namespace sealwright {

/// What the queries of the notary service share, which a person or a script makes beside a submission. They
/// change nothing on disk, and cannot be cancelled. Main thread.
class ServiceCommands : protected DocumentExtension {
protected:
    explicit ServiceCommands(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }
    ~ServiceCommands() = default;

    /// Makes the document busy and answers with what a run takes along; nothing if what was entered cannot be
    /// right, which has been reported then, or if an edit cannot be ended, of which a waiting script is told
    /// by the text.
    [[nodiscard]] std::optional<RunInputs> beginQuery(const QString &blockedText);

    /// Gives the script its answer, if there is one, and makes the document ready and idle. Worker thread.
    void finishQuery(const std::optional<QVariant> &answer);
    /// Makes the document idle, whatever its status.
    void makeIdle();
};

} // namespace sealwright
