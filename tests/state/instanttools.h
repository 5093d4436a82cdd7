#pragma once

#include "platform/process.h"

#include <QHash>
#include <QSet>

#include <condition_variable>
#include <functional>
#include <mutex>

/// What the tools answer, without any process: thousands of runs a second. Any thread.
class InstantTools : public platform::ProcessLauncher {
public:
    struct Answer {
        int status = 0;
        QByteArray output = {};
        QByteArray error = {};
        bool hangs = false; ///< until it is ended or released
    };

    InstantTools();

    /// Called with each run that does not fail, on its thread: what the tool does on disk.
    std::function<void(const QString &tool, const QStringList &arguments)> effect;

    /// What the tool answers in its next run, once.
    void answerNext(const QString &tool, const Answer &answer);
    /// Lets all that hang go on.
    void releaseAll();
    int hanging() const;
    /// How many queries of the notary service run now for a document, at most over all documents.
    int mostQueriesAtOnce() const;

    [[nodiscard]] std::shared_ptr<platform::Process> process(const QString &path,
                                                             const QStringList &arguments) override;
    platform::Outcome launchDetached(const QString &path, const QStringList &arguments) override;

private:
    class InstantProcess;
    friend class InstantProcess;

    Answer takeAnswer(const QString &tool);
    void enterQuery(const QString &request);
    void leaveQuery(const QString &request);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QHash<QString, Answer> m_usual;
    QHash<QString, QList<Answer>> m_next;
    QHash<QString, int> m_queries; // that run now, by request
    int m_mostQueries = 0;
    QSet<const InstantProcess *> m_hanging; ///< without those that have been let go and do not know it yet
    int m_uploads = 0;
};
