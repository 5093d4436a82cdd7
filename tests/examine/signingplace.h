#pragma once

#include "examine/timestampserver.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

/// A test that signs as runs do: with identities of its own, and the time of an authority of its own.
class SigningPlace : public testing::Test {
public:
    static inline const QString holder = QStringLiteral("Example Corp (A1B2C3D4E5)");

    /// Runs a tool of the toolchain. What it said when it failed; null if it did not.
    static QString tool(const QString &name, const QStringList &arguments);
    /// Signs with these options beside identity and time stamp, in place of what signature there is.
    static QString sign(const QString &path, const QStringList &options);
    /// Signs without a secure time stamp.
    static QString signUnstamped(const QString &path, const QStringList &options);
    /// Signs a package, which gets another name.
    static QString signPackage(const QString &package, const QString &signedPackage);

protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

private:
    static inline std::unique_ptr<QTemporaryDir> s_state;
    static inline std::unique_ptr<TimestampServer> s_server;
};
