#include "notarization/history.h"

#include "document/mainwincontroller.h"
#include "notarization/credentialcheck.h"
#include "platform/propertylist/propertylist.h"
#include "scripting/scriptcommand.h"

using namespace Qt::StringLiterals;

namespace {

std::optional<quint64> nextPageInList(const QString &reply)
{
    const auto list = platform::propertyListFromData(reply.toUtf8());
    if (!list)
        return std::nullopt;
    return list.value.toMap().value(u"notarization-history"_s).toMap().value(u"next-page"_s).toULongLong();
}

} // namespace

std::optional<quint64> nextPage(const QString &reply, OutputFormat format)
{
    // What finds a next page in plain text is the pattern "Next page value: ({Nd}+)". It lacks the backslash
    // that makes {Nd} a class of digits, so that the engine that it is written for refuses it and finds
    // nothing, which is what people know: a page at a time.
    return format == OutputFormat::xml ? nextPageInList(reply) : std::nullopt;
}

void History::doFetchHistory()
{
    fetchHistory(std::nullopt);
}

void History::fetchHistory(const std::optional<quint64> &page)
{
    Pages pages{.first = 0, .limit = document.maxPageCount(), .format = OutputFormat::normal};
    if (page) {
        document.isScripted.set(true);
        pages = {.first = *page, .limit = *page + 1, .format = formatForScript()};
    } else {
        document.suppressDialogs.set(false);
    }
    const auto credentials = beginQuery(u"Inteface is blocked."_s);
    if (!credentials)
        return;
    document.logBoldString(fetchingHistory);
    document.dispatchToWorker([this, pages, asked = *credentials] { fetchPages(pages, asked); });
}

OutputFormat History::formatForScript() const
{
    const auto command = document.currentCommand();
    const bool wantsXml = command && command->evaluatedArguments().value(argument::xmlOutput).toBool();
    return wantsXml ? OutputFormat::xml : OutputFormat::normal;
}

void History::fetchPages(const Pages &pages, const Credentials &credentials)
{
    for (quint64 page = pages.first; page < pages.limit; ++page) {
        const auto response = ask(altoolarguments::history(QString::number(page), credentials, pages.format));
        if (response->status() != 0) {
            const QString error = response->errorString();
            return reportHistoryFailure(credentialMessage(error), error);
        }
        const QString output = response->outputString();
        document.logString(orNull(output));
        if (nextPage(output, pages.format) != page + 1)
            return finishQuery([this, output] { answerScript(output); });
    }
    finishQuery();
}

void History::answerScript(const QString &output)
{
    if (const auto command = document.currentCommand())
        command->resumeExecutionWithResult(output.isNull() ? QVariant() : QVariant(output));
}
