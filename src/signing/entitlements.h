#pragma once

#include "document/documentextension.h"

#include <QString>
#include <QVariantMap>

#include <optional>

struct DocumentControls;

/// The entitlements that every signature of a run carries: the document's settings and, over them, a property
/// list of the user's.
class Entitlements : private DocumentExtension {
public:
    explicit Entitlements(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// The dictionary for this run. The extra file is read anew each time; nothing after a failure, which has
    /// been reported. Main thread, before the job starts.
    [[nodiscard]] std::optional<QVariantMap> assembleEntitlements();

    /// Writes the dictionary into the working folder. False after a failure that has been reported. Worker
    /// thread.
    [[nodiscard]] bool saveEntitlementsDictionary(const QVariantMap &entitlements);

private:
    std::optional<QVariantMap> extraEntitlements();
    void reportExtraFailure(const QString &logError);
};

/// The keys whose settings are on, each with the value true.
[[nodiscard]] QVariantMap entitlementsFromSettings(const DocumentControls &settings);
