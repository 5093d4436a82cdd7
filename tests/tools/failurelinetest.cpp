#include "tools/failureline.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

SLWTaskResponsePtr responseWithError(const QByteArray &error)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/usr/bin/ditto"_s, {});
    response->setData(std::make_shared<OutputBuffer>(), std::make_shared<OutputBuffer>(error));
    response->status.set(7);
    return response;
}

/// The number that the line shows: the reference and not the status.
QString referenceOf(const SLWTaskResponsePtr &response)
{
    return QString::number(reinterpret_cast<qint64>(response.get()));
}

} // namespace

TEST(FailureLine, showsTheReferenceToTheResponseAndItsError)
{
    const auto response = responseWithError("cannot read %1\n");
    EXPECT_EQ(toolFailureLine(*response, u"in ditto"_s),
              u"Error "_s + referenceOf(response) + u" in ditto: cannot read %1\n"_s);
}

TEST(FailureLine, endsWithAFullStopWhereTheToolPrintedNothing)
{
    const auto response = responseWithError({});
    EXPECT_EQ(toolFailureLine(*response, u"in ditto"_s),
              u"Error "_s + referenceOf(response) + u" in ditto."_s);
}
