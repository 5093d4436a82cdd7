#include "document/historycommands.h"

#include "document/mainwincontroller.h"
#include "notarization/history.h"
#include "platform/scriptcommand.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void HistoryCommands::doFetchHistory()
{
    fetchHistory(std::nullopt);
}

void HistoryCommands::fetchHistory(const std::optional<quint64> &page)
{
    if (page)
        document.isScripted.set(true);
    else
        document.suppressDialogs.set(false);
    auto inputs = beginQuery(u"Inteface is blocked."_s);
    if (!inputs)
        return;
    inputs->firstPage = page.value_or(0);
    inputs->pageLimit = page ? *page + 1 : document.maxPageCount();
    inputs->format = page ? formatForScript() : OutputFormat::normal;
    document.logBoldString(fetchingHistory);
    document.startRun(*inputs, historyWorkflow(), [this](Run &run) { finishQuery(run.answer); });
}

OutputFormat HistoryCommands::formatForScript() const
{
    const auto command = document.currentCommand();
    const bool wantsXml = command && command->evaluatedArguments().value(argument::xmlOutput).toBool();
    return wantsXml ? OutputFormat::xml : OutputFormat::normal;
}

} // namespace sealwright
