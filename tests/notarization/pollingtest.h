#pragma once

#include "support/items.h"
#include "support/testhost.h"

#include "document/documentcommands.h"

#include <gtest/gtest.h>

/// A submission of Foo.app that waits for its verdict. The service has none, unless a test lays one down.
class Polling : public testing::Test {
protected:
    Polling();

    /// Up to the armed timer of the first poll.
    void wait();
    /// Fires the armed poll. Answers with the delay of the next one, or -1 if there is none.
    double poll();
    /// Fires the armed poll and returns when the tool runs, which hangs, and nothing else goes on.
    void pollUpTo(const QString &tool, int run = 1);
    /// The lines of the log file whose message contains the text.
    QStringList fileLines(const QString &folder, const QString &part);
    void expectFinalAlert(const QString &title);

    static ToolAnswer reply(const QByteArray &output) { return {.output = output}; }
    static ToolAnswer inProgress() { return reply(FakeTools::infoReport(QStringLiteral("in progress"))); }
    static ToolAnswer success() { return reply(FakeTools::infoReport(QStringLiteral("success"))); }

    static inline const QString infoTool = QStringLiteral("altool--notarization-info");

    TestHost host;
    QByteArray original; ///< the fingerprint of Foo.app
};
