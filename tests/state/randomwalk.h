#pragma once

#include "support/testhost.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <random>

/// The number that an environment variable has.
inline int numberFrom(const char *variable, int otherwise)
{
    bool isSet = false;
    const int number = qEnvironmentVariableIntValue(variable, &isSet);
    return isSet ? number : otherwise;
}

/// A walk that a seed decides, the usual one or that of the environment.
class RandomWalk : public testing::Test {
protected:
    explicit RandomWalk(int usualSeed)
        : m_random(static_cast<unsigned>(numberFrom("SEALWRIGHT_SEED", usualSeed)))
    {
    }

    /// So that no copy that has been worked on passes for the item of the user. Another document may just
    /// have taken the copy away.
    static void leaveTrace(const QString &tool, const QStringList &arguments)
    {
        const QString item = arguments.value(arguments.size() - 1);
        const bool isFileSigned = tool == QLatin1String("productsign")
            || (tool == QLatin1String("codesign") && QFileInfo(item).isFile());
        if (!isFileSigned && tool != QLatin1String("xattr") && tool != QLatin1String("codesign"))
            return;
        QFile trace(isFileSigned ? item : item + QStringLiteral("/signed"));
        if (trace.open(QIODevice::WriteOnly))
            trace.write("signed");
    }

    int below(qsizetype limit)
    {
        return static_cast<int>(std::uniform_int_distribution<qsizetype>(0, limit - 1)(m_random));
    }
    bool happens(int percent) { return below(100) < percent; }
    template <class List>
    auto &oneOf(List &list)
    {
        return list[below(std::size(list))];
    }

    TestHost test;

private:
    std::mt19937 m_random;
};
