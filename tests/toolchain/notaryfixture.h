#pragma once

#include "formats/notary/httpclient.h"
#include "toolchain/toolfixture.h"

#include <QJsonArray>
#include <QJsonObject>

/// One of the requests that the client makes.
struct NotaryCall {
    const char *name;
    const char *pattern; ///< over the path
    const char *method;
    int skip = 0; ///< so many requests of this kind are another call's
    bool isOfParts = false; ///< of an upload that goes in parts
};

inline constexpr NotaryCall listing{"the history", "/submissions$", "GET"};
inline constexpr NotaryCall submitting{"the submission", "/submissions$", "POST"};
inline constexpr NotaryCall putting{"the upload", "^/s3/", "PUT"};
inline constexpr NotaryCall beginningParts{"the beginning of parts", "^/s3/", "POST", 0, true};
inline constexpr NotaryCall puttingPart{"a part", "^/s3/", "PUT", 1, true};
inline constexpr NotaryCall completingParts{"the end of parts", "^/s3/", "POST", 1, true};
inline constexpr NotaryCall asking{"the question", "/submissions/[^/]+$", "GET"};
inline constexpr NotaryCall logging{"the log's address", "/logs$", "GET"};
inline constexpr NotaryCall reading{"the log", "^/artifacts/", "GET"};

/// A list of one fault; the value is JSON.
[[nodiscard]] QByteArray faultAt(const NotaryCall &call, const char *name, int count,
                                 const QByteArray &value = {});

/// A notary service of the test's own that can be made to misbehave, and a key for it under the name "item".
class NotaryFixture : public ToolFixture {
protected:
    void SetUp() override;

    [[nodiscard]] toolchain::notary::ServiceConfig config() const;

    /// "https://127.0.0.1:PORT"
    [[nodiscard]] QString origin() const;

    /// Asks the service without any of the client's own wisdom.
    [[nodiscard]] toolchain::notary::HttpReply
    ask(const QByteArray &method, const QString &path, const QByteArray &body = {},
        const QList<toolchain::notary::HttpHeader> &headers = {}) const;

    /// Replaces the faults; answers the status.
    int setFaults(const QByteArray &json) const;

    /// What has been asked since the last reset.
    [[nodiscard]] QJsonArray requests() const;
    void forgetRequests() const;

    /// How many of them were this call, answered or not.
    [[nodiscard]] int requestsTo(const NotaryCall &call) const;

    /// The arguments of xcrun with which altool makes such a call.
    [[nodiscard]] QStringList commandFor(const NotaryCall &call, const QString &archive,
                                         const QString &uuid) const;

    /// A file that is taken as an archive, and refused by the review.
    [[nodiscard]] QString makeArchive(const QString &name = QStringLiteral("Some.zip"),
                                      qint64 size = 5000) const;

    /// The identifier of an upload of such a file, which is decided.
    [[nodiscard]] QString decidedRequest() const;
};
