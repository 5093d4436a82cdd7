#include "scripting/dbus/buscall.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(LastErrors, keepTheLatestObjectOfEachConnection)
{
    LastErrors errors;
    EXPECT_TRUE(errors.attend(u":1.1"_s));
    EXPECT_FALSE(errors.attend(u":1.1"_s));
    errors.attend(u":1.2"_s);
    errors.record(u":1.1"_s, u"first"_s);
    errors.record(u":1.1"_s, u"second"_s);
    EXPECT_EQ(errors.of(u":1.1"_s), QVariant(u"second"_s));
    EXPECT_FALSE(errors.of(u":1.2"_s).isValid());
}

TEST(LastErrors, anErrorWithoutAnObjectTakesTheEarlierOnesPlace)
{
    LastErrors errors;
    errors.attend(u":1.1"_s);
    errors.record(u":1.1"_s, u"first"_s);
    errors.record(u":1.1"_s, {});
    EXPECT_FALSE(errors.of(u":1.1"_s).isValid());
}

TEST(LastErrors, whatComesForAConnectionThatHasGoneIsNotKept)
{
    LastErrors errors;
    errors.attend(u":1.1"_s);
    errors.forget(u":1.1"_s);
    errors.record(u":1.1"_s, u"late"_s);
    EXPECT_FALSE(errors.of(u":1.1"_s).isValid());
}
