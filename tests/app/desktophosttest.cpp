// What the program says of itself, with the resources that are linked into it.

#include "app/desktophost.h"

#include "about/credits.h"
#include "about/versionline.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(DesktopHost, hasCreditsThatCanBeRead)
{
    const QString credits = DesktopHost::configuration().credits;
    EXPECT_TRUE(credits.startsWith(u":/"_s)) << "in the program itself, wherever it is installed";
    EXPECT_FALSE(readCredits(credits).isEmpty());
}

TEST(DesktopHost, hasABuildDateThatCanBeShown)
{
    const QString date = DesktopHost::configuration().buildDate;
    EXPECT_FALSE(localizedBuildDate(date).isEmpty()) << date.toStdString();
}
