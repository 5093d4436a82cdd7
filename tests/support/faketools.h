#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// What a fake tool does when it is run.
struct ToolAnswer {
    int status = 0;
    QByteArray output = {};
    QByteArray error = {};
    int signal = 0; ///< not 0: the tool dies of it
    bool hangs = false; ///< waits until it is ended or released
    QByteArray content = {}; ///< not null: written to `target`
    QString target = QStringLiteral("{last}"); ///< a path, or "{last}" for the path in the last argument
    bool readsInput = false; ///< to its end, before anything else
};

struct ToolCall {
    QString tool; ///< "codesign", "altool--notarize-app", "stapler" and so on
    QStringList arguments;
    bool operator==(const ToolCall &) const = default;
};

/// A tool root in a folder, whose tools record how they are called and answer what a test lays down. Made
/// ready for a submission that succeeds at its first poll.
class FakeTools {
public:
    explicit FakeTools(const QString &folder);

    QString root() const { return m_root; }
    /// Puts the fake tool at the path below the root.
    void add(const QString &path);
    /// The answer of each run that has none of its own.
    void answer(const QString &tool, const ToolAnswer &answer);
    /// The answer of the tool's run of that number, counted from 1.
    void answerRun(const QString &tool, int run, const ToolAnswer &answer);
    /// Lets the runs of the tool go on that hang for its usual answer, or for that of one run.
    void release(const QString &tool, int run = 0);
    /// Whether a run that hung for that answer has gone on since; one that was ended never does.
    [[nodiscard]] bool hasGoneOn(const QString &tool, int run = 0) const;
    /// Lets the tool's run of that number, counted from 1, do its work and then kill the process that runs
    /// it.
    void killCallerIn(const QString &tool, int run);
    /// Takes the tool away from the root.
    void remove(const QString &path);

    /// What the latest run of the tool that was to read its input has read.
    QByteArray inputOf(const QString &tool) const;
    QList<ToolCall> calls() const;
    /// The calls of one tool.
    QList<QStringList> callsOf(const QString &tool) const;
    /// The names of the tools that ran, in their order.
    QStringList order() const;
    void forgetCalls();

    static QByteArray uploadReply(const QString &requestUUID = QStringLiteral("1234-abcd"));
    static QByteArray infoReport(const QString &status, const QString &logFileURL = {});

private:
    QString answerFolder(const QString &tool, int run) const;

    QString m_root;
};
