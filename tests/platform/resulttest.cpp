#include "platform/result.h"

#include "platform/invariant.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

TEST(AResult, hasItsValue)
{
    const Result<int> result = 3;
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 3);
    EXPECT_EQ(result.error(), QString());
}

TEST(AResult, tellsWhyThereIsNoValue)
{
    const Result<int> result = Error{u"Foo: not there"_s};
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), u"Foo: not there");
    EXPECT_EQ(result.valueOr(7), 7);
}

TEST(AResult, handsItsFailureOnToAnotherType)
{
    const Result<int> first = Error{u"Foo: not there"_s};
    const Result<QString> second = first.failure();
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error(), u"Foo: not there");
}

TEST(AResult, givesAwayAValueThatCannotBeCopied)
{
    Result<std::unique_ptr<int>> result = std::make_unique<int>(5);
    const std::unique_ptr<int> value = *std::move(result);
    EXPECT_EQ(*value, 5);
}

TEST(AnOutcome, isASuccessUntilItIsTold)
{
    EXPECT_TRUE(platform::Outcome());
    EXPECT_TRUE(platform::Outcome::success());
    EXPECT_EQ(platform::Outcome().error(), QString());
}

TEST(AnOutcome, ofAFailureWithoutATextIsAFailureStill)
{
    EXPECT_FALSE(platform::Outcome::failure({}));
    EXPECT_FALSE(platform::Outcome(Error{u"Foo: not there"_s}));
}

TEST(AnOutcome, takesTheFailureOfAValueOver)
{
    const Result<int> value = Error{u"Foo: not there"_s};
    const platform::Outcome outcome = value.failure();
    EXPECT_EQ(outcome.error(), u"Foo: not there");
}

namespace {

QStringList noted;

void note(QtMsgType, const QMessageLogContext &, const QString &text)
{
    noted.append(text);
}

} // namespace

TEST(AnOutcome, thatIsIgnoredIsNotedWhereThatIsWanted)
{
    noted.clear();
    const auto before = qInstallMessageHandler(note);
    platform::Outcome::failure(u"unheard"_s).ignore();
    QLoggingCategory::setFilterRules(u"sealwright.platform.debug=true"_s);
    platform::Outcome::failure(u"Foo: not there"_s).ignore();
    platform::Outcome().ignore();
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(before);
    EXPECT_EQ(noted, QStringList{u"ignored: Foo: not there"_s});
}

TEST(AnInvariant, thatIsBrokenIsNamedWithItsPlaceInAnyCase)
{
    noted.clear();
    const auto before = qInstallMessageHandler(note);
    const bool whatHolds = platform::holds(true, "one and one is two");
    const bool whatBreaks = platform::holds(false, "a circle has corners");
    qInstallMessageHandler(before);
    EXPECT_TRUE(whatHolds);
    EXPECT_FALSE(whatBreaks);
    ASSERT_EQ(noted.size(), 1);
    EXPECT_TRUE(noted.first().startsWith(u"broken: a circle has corners ("_s)) << noted.first().toStdString();
    EXPECT_TRUE(noted.first().contains(u"resulttest.cpp:"_s));
}
