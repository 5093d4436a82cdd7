#pragma once

#include "notarization/servicequery.h"

/// Shows what the service has on record about a submission that has been lost track of.
class RequestInfo : private ServiceQuery {
public:
    explicit RequestInfo(MainWinController &owner)
        : ServiceQuery(owner)
    {
    }

    // Commands. Main thread.
    void doInfoForUUIDInFile();
    void doInfoForUUIDOfLastUpload();
    void doInfoForUUIDOnClipboard();

    /// Prints the record of that request into the log, or without an identifier that of the newest entry in
    /// the account's history. Main thread.
    void infoForRequestUUID(const std::optional<QString> &requestUUID);

private:
    void lookUpRequestInFile(const QString &path);

    // The job. Worker thread; takes one or two network requests, and one more for the service's log.
    void lookUp(const std::optional<QString> &requestUUID, const Credentials &credentials);
    [[nodiscard]] std::optional<QString> findNewestRequest(const Credentials &credentials);
    void fetchInfo(const QString &requestUUID, const Credentials &credentials);
    void showReport(const QString &report);
    [[nodiscard]] std::optional<QString> textOfLogFile(const QString &report);
};

/// Whether a text has the form that the clipboard must have: groups of 8, 4, 4, 4 and 12 of the characters 0
/// to 9 and a to h, with hyphens between them and nothing around.
[[nodiscard]] bool isRequestUUID(const QString &text);

/// The identifier of the first entry in the notary tool's reply, an XML property list; nothing if there is
/// none.
[[nodiscard]] std::optional<QString> newestRequestUUID(const QString &history);

/// What the user is told when the history cannot be had for a lookup. Of a tool that said nothing the
/// keychain is to blame.
[[nodiscard]] QString lookupFailureMessage(const QString &errorString);

/// The log line of a failed lookup; it shows the reference to the response, and not the status that a failed
/// poll shows.
[[nodiscard]] QString lookupFailureLine(const SLWTaskResponse &response);
