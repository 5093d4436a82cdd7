#pragma once

#include "platform/propertylist/propertylist.h"

#include <gtest/gtest.h>

/// The value of data that must read.
inline QVariant valueOf(const QByteArray &data)
{
    const auto result = platform::propertyListFromData(data);
    EXPECT_TRUE(result) << result.error().toStdString();
    EXPECT_TRUE(result.valueOr({}).isValid());
    return result.valueOr({});
}

/// The error text of data that must not read; empty, after a failed expectation, for data that did.
inline std::string errorOf(const QByteArray &data)
{
    const auto result = platform::propertyListFromData(data);
    EXPECT_FALSE(result);
    EXPECT_FALSE(result.valueOr({}).isValid());
    return result.error().toStdString();
}

/// Reading may work or fail, but it must say which.
inline void expectVerdict(const QByteArray &data)
{
    const auto result = platform::propertyListFromData(data);
    EXPECT_EQ(bool(result), result.valueOr({}).isValid());
    EXPECT_EQ(bool(result), result.error().isNull());
}

/// Type and value are equal: a QVariant by itself takes 1 for true.
inline void expectSame(const QVariant &actual, const QVariant &expected)
{
    EXPECT_STREQ(actual.typeName(), expected.typeName());
    EXPECT_TRUE(actual == expected) << platform::propertyListDescription(actual).toStdString()
                                    << "\ninstead of\n"
                                    << platform::propertyListDescription(expected).toStdString();
}

/// A list in some form and what it must read as.
struct ValueRow {
    const char *situation;
    QByteArray data;
    QVariant value;
};

/// A wrong list and the error text that it must give.
struct ErrorRow {
    const char *situation;
    QByteArray data;
    const char *error;
};

inline void PrintTo(const ValueRow &row, std::ostream *stream)
{
    *stream << row.situation;
}

inline void PrintTo(const ErrorRow &row, std::ostream *stream)
{
    *stream << row.situation;
}

template <typename Row>
std::string nameOfRow(const testing::TestParamInfo<Row> &info)
{
    return info.param.situation;
}
