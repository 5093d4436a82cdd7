#include "platform/scriptcommand.h"

namespace {

thread_local ScriptCommandPtr executing;

} // namespace

ScriptCommand::ScriptCommand(QVariantMap evaluatedArguments, Completion completion)
    : m_arguments(std::move(evaluatedArguments))
    , m_completion(std::move(completion))
{
}

ScriptCommandPtr ScriptCommand::executingCommand()
{
    return executing;
}

void ScriptCommand::execute(const std::function<void(const ScriptCommandPtr &)> &handler)
{
    const ScriptCommandPtr outer = std::exchange(executing, shared_from_this());
    handler(executing);
    executing = outer;
    if (!m_isSuspended())
        answer();
}

void ScriptCommand::suspendExecution()
{
    m_isSuspended.set(true);
}

void ScriptCommand::resumeExecutionWithResult(const QVariant &result)
{
    m_reply.update([&result](ScriptReply &reply) { reply.result = result; });
    answer();
}

void ScriptCommand::setScriptErrorNumber(qint64 number)
{
    m_reply.update([number](ScriptReply &reply) { reply.errorNumber = number; });
}

void ScriptCommand::setScriptErrorString(const QString &text)
{
    m_reply.update([&text](ScriptReply &reply) { reply.errorText = text; });
}

void ScriptCommand::setScriptErrorOffendingObjectDescriptor(const QVariant &object)
{
    m_reply.update([&object](ScriptReply &reply) { reply.offendingObject = object; });
}

void ScriptCommand::answer()
{
    if (!m_isAnswered.test_and_set())
        m_completion(m_reply());
}
