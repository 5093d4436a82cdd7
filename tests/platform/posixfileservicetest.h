#pragma once

#include "platform/posix/posixfileservice.h"
#include "support/changedvariable.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

/// The service at work in a folder of the test's own.
class Files : public testing::Test {
protected:
    platform::PosixFileService files;
    TemporaryFolder folder;
};

/// The permissions of what lies there.
inline unsigned modeOf(const QString &path)
{
    return stateOf(path).st_mode & 07777;
}
