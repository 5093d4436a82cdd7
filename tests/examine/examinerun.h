#pragma once

#include "examine/codefiles.h"
#include "examine/comparison.h"
#include "examine/examiner.h"
#include "examine/itemmaker.h"
#include "examine/product.h"

#include <QProcess>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

/// How a look has ended.
struct Ended {
    int status;
    QByteArray output;
    QByteArray error;
};

/// Runs the program that looks.
inline Ended run(const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromUtf8(EXAMINE), arguments);
    EXPECT_TRUE(process.waitForFinished());
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}
