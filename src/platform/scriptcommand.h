#pragma once

#include "platform/property.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

/// The arguments that commands read.
namespace argument {
inline const QString at = QStringLiteral("at"); ///< the item, a file URL
inline const QString showingDialogs = QStringLiteral("showingDialogs"); ///< boolean
inline const QString skippingStapling = QStringLiteral("skippingStapling"); ///< boolean
inline const QString pageToFetch = QStringLiteral("pageToFetch"); ///< whole number
inline const QString xmlOutput = QStringLiteral("xmlOutput"); ///< boolean
inline const QString signingIdentity = QStringLiteral("signingIdentity"); ///< text
inline const QString document = QStringLiteral("document"); ///< the document whose choices are meant
inline const QString old = QStringLiteral("old"); ///< an item, a file URL
inline const QString recent = QStringLiteral("new"); ///< the same
} // namespace argument

/// The number of a failure that only its text explains.
inline constexpr qint64 scriptErrorGeneral = 7;

/// What a script receives at the end of its command.
struct ScriptReply {
    QVariant result; ///< invalid for none
    qint64 errorNumber = 0; ///< 0 for no error
    QString errorText; ///< null for none
    QVariant offendingObject; ///< invalid for none; a file URL or a text

    bool isError() const { return errorNumber != 0; }
};

/// One command of a script, from its arrival to its answer. A handler either answers at once, by returning,
/// or suspends the command, which then waits until somebody resumes it. Answered once at most: what is set or
/// resumed after that goes nowhere. Any thread.
class ScriptCommand : public std::enable_shared_from_this<ScriptCommand> {
public:
    using Completion = std::function<void(const ScriptReply &)>;

    /// The completion gets the answer, on the thread that gives it.
    ScriptCommand(QVariantMap evaluatedArguments, Completion completion);

    /// Has the handler carry out the command, as the current one of this thread.
    void execute(const std::function<void(const std::shared_ptr<ScriptCommand> &)> &handler);

    /// The command that this thread executes, or null.
    static std::shared_ptr<ScriptCommand> executingCommand();

    const QVariantMap &evaluatedArguments() const { return m_arguments; }
    void suspendExecution();
    void resumeExecutionWithResult(const QVariant &result);
    void setScriptErrorNumber(qint64 number);
    void setScriptErrorString(const QString &text);
    void setScriptErrorOffendingObjectDescriptor(const QVariant &object);

private:
    void answer();

    const QVariantMap m_arguments;
    const Completion m_completion;
    Property<ScriptReply> m_reply;
    Property<bool> m_isSuspended;
    std::atomic_flag m_isAnswered;
};

using ScriptCommandPtr = std::shared_ptr<ScriptCommand>;
