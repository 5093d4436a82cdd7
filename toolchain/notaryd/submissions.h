#pragma once

#include "formats/notary/awssignature.h"
#include "formats/notarystate.h"

#include <QHash>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/result.h"

namespace notaryd {

using toolchain::NotaryRequest;

/// What a submission's sender may put into the storage, and where.
struct UploadSession {
    QString id;
    QByteArray bucket;
    QByteArray object;
    toolchain::notary::UploadCredentials credentials;
    QDateTime expires; ///< UTC, by the service's clock
};

/// All submissions: on disk, so that they outlive the service, with the credentials of those that still may
/// be uploaded in memory. A thread of its own reviews them one after the other. Any thread may call.
class Submissions {
public:
    static inline const QByteArray bucket = "notary-submissions-local";

    using Reviewer = std::function<void(NotaryRequest &request, const QString &path)>;

    /// Is told of each request once its review is over and written down, from the reviewing thread.
    using Watcher = std::function<void(const NotaryRequest &request)>;

    Submissions(QString notaryFolder, Reviewer review, Watcher reviewed);
    ~Submissions();
    Submissions(const Submissions &) = delete;
    Submissions &operator=(const Submissions &) = delete;

    [[nodiscard]] platform::Result<UploadSession> begin(const NotaryRequest &announced, const QDateTime &now);
    [[nodiscard]] std::optional<UploadSession> sessionOf(const QByteArray &accessKey);

    /// Whether bytes may (still) be put at the submission's object.
    [[nodiscard]] bool isOpen(const QString &id);
    /// Why a file cannot become a submission's object.
    struct Refusal {
        QString code; ///< of the storage's errors
        QString reason;
    };
    /// Moves a whole file to where the submission's object lies, unless that is being reviewed or has been.
    /// The review begins with the first question for it, or a while later. The same file may be placed again.
    [[nodiscard]] std::optional<Refusal> place(const QString &id, const QString &file);

    /// Counts a question.
    [[nodiscard]] std::optional<NotaryRequest> ask(const QString &id);
    [[nodiscard]] std::optional<NotaryRequest> find(const QString &id) const;
    /// Newest first.
    [[nodiscard]] QList<NotaryRequest> all() const;

    /// The folder of a submission's pieces, and in it its object.
    [[nodiscard]] QString folderOf(const QString &id) const;
    [[nodiscard]] QString objectOf(const QString &id) const
    {
        return folderOf(id) + QStringLiteral("/object");
    }

    /// Whether a review is waited for or going on.
    [[nodiscard]] bool isBusy();

private:
    using Clock = std::chrono::steady_clock;

    void work();
    void resume();
    [[nodiscard]] std::optional<Refusal> moveToObject(const NotaryRequest &request,
                                                      const QString &file) const;
    [[nodiscard]] QString nextDue(std::unique_lock<std::mutex> &lock);
    /// False if the request cannot be read now, the parts cannot be joined, or the verdict cannot be kept.
    [[nodiscard]] bool review(const QString &id);
    void forgetAbandoned();

    const QString m_folder;
    const toolchain::NotaryState m_state;
    const Reviewer m_review;
    const Watcher m_reviewed;
    std::mutex m_mutex;
    std::mutex m_stateMutex; ///< of what stands on disk
    std::condition_variable m_changed;
    QHash<QByteArray, UploadSession> m_sessions; ///< by access key
    QHash<QString, Clock::time_point> m_waiting; ///< when the review begins at the latest
    QString m_underReview;
    bool m_isEnding = false;
    std::thread m_worker;
};

} // namespace notaryd
