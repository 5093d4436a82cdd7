#include "notarization/history.h"

#include "notarization/altoolarguments.h"
#include "notarization/credentialcheck.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace sealwright {

const QString fetchingHistory = u"\nFetching notarizing history..."_s;

namespace {

std::optional<quint64> nextPageInList(const QString &reply)
{
    const auto list = platform::propertyListFromData(reply.toUtf8());
    if (!list)
        return std::nullopt;
    return list->toMap().value(u"notarization-history"_s).toMap().value(u"next-page"_s).toULongLong();
}

StepResult fetchPages(Run &run)
{
    const RunInputs &asked = run.inputs();
    for (quint64 page = asked.firstPage; page < asked.pageLimit; ++page) {
        const auto response = run.tools.askService(
            altoolarguments::history(QString::number(page), asked.credentials, asked.format));
        const QString error = response->errorString();
        if (response->status() != 0)
            return historyFailure(credentialMessage(error), error);
        const QString output = response->outputString();
        run.log.logString(orNull(output));
        if (nextPage(output, asked.format) != page + 1) {
            run.answer = output.isNull() ? QVariant() : QVariant(output);
            break;
        }
    }
    return Done{};
}

constexpr Step fetchHistory{.name = {}, .work = &fetchPages, .cancelTest = CancelTest::isLeftOut};

} // namespace

Workflow historyWorkflow()
{
    return {fetchHistory};
}

QString historyFailureLine(const QString &message, const QString &errorString)
{
    return u"%1\nError message: %2\nCheck that both the app-specific pasword and Apple ID are correct."_s.arg(
        message, orNull(errorString));
}

Failure historyFailure(const QString &message, const QString &errorString)
{
    return {u"Cannot Fetch History"_s, historyFailureLine(message, errorString), FolderFate::keepsItsName};
}

std::optional<quint64> nextPage(const QString &reply, OutputFormat format)
{
    // What finds a next page in plain text is the pattern "Next page value: ({Nd}+)". It lacks the backslash
    // that makes {Nd} a class of digits, so that the engine that it is written for refuses it and finds
    // nothing, which is what people know: a page at a time.
    return format == OutputFormat::xml ? nextPageInList(reply) : std::nullopt;
}

} // namespace sealwright
