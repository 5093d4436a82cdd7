#include "tools/commandsimple.h"

#include "platform/posix/posixprocesslauncher.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(SimpleCommand, givesTheStandardOutputOfAShellLine)
{
    platform::PosixProcessLauncher launcher;
    EXPECT_EQ(runCommandSimple(launcher, u"printf 'a b\\n' | tr a-z A-Z; exit 3"_s), u"A B\n"_s);
}

TEST(SimpleCommand, passesStandardErrorOnToTheApplicationsOwn)
{
    platform::PosixProcessLauncher launcher;
    testing::internal::CaptureStderr();
    EXPECT_EQ(runCommandSimple(launcher, u"echo out; echo wrong >&2"_s), u"out\n"_s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "wrong\n");
}

TEST(SimpleCommand, givesNoTextForBytesThatAreNoUtf8)
{
    platform::PosixProcessLauncher launcher;
    EXPECT_TRUE(runCommandSimple(launcher, u"printf 'caf\\351 bar'"_s).isNull());
    EXPECT_TRUE(runCommandSimple(launcher, u"printf 'caf\\303'"_s).isNull());
}

TEST(SimpleCommand, keepsALoneByte)
{
    platform::PosixProcessLauncher launcher;
    EXPECT_EQ(runCommandSimple(launcher, u"printf x"_s), u"x"_s);
}

TEST(SimpleCommand, takesMoreThanAPipeHolds)
{
    platform::PosixProcessLauncher launcher;
    EXPECT_EQ(runCommandSimple(launcher, u"head -c 300000 /dev/zero | tr '\\0' x"_s).size(), 300000);
}

TEST(SimpleCommand, givesNoTextWithoutAShell)
{
    platform::PosixProcessLauncher launcher([](const QString &) { return u"/nowhere/sh"_s; });
    testing::internal::CaptureStderr();
    EXPECT_TRUE(runCommandSimple(launcher, u"echo out"_s).isNull());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Cannot launch '/bin/sh' (found at '/nowhere/sh'): No such file or directory\n");
}
