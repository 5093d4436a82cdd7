#pragma once

#include "support/testhost.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>

/// A run of the client. While it is waited for, the event loop of the test runs.
class Ctl {
public:
    Ctl(TestHost &host, const QStringList &words, const QString &folder = {})
        : m_host(host)
    {
        if (!folder.isEmpty())
            m_process.setWorkingDirectory(folder);
        m_process.start(QString::fromUtf8(SEALWRIGHTCTL), words);
        EXPECT_TRUE(m_process.waitForStarted());
    }
    ~Ctl()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// Waits for the end; the exit status, or -1 if a signal ended it.
    int end()
    {
        m_host.runUntil([this] { return m_process.state() == QProcess::NotRunning; });
        output += QString::fromUtf8(m_process.readAllStandardOutput());
        error += QString::fromUtf8(m_process.readAllStandardError());
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    /// Waits until standard error has the text.
    void waitForError(const QString &text)
    {
        m_host.runUntil([&] {
            error += QString::fromUtf8(m_process.readAllStandardError());
            return error.contains(text);
        });
    }
    void interrupt() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGINT); }
    /// Waits until it has done all that there is to do: what an interrupt asks for is done by then.
    void waitUntilIdle()
    {
        QFile state(QStringLiteral("/proc/%1/stat").arg(m_process.processId()));
        m_host.runUntil([&state] {
            EXPECT_TRUE(state.open(QIODevice::ReadOnly));
            const QByteArray text = state.readAll();
            state.close();
            return text.mid(text.lastIndexOf(')')).startsWith(") S");
        });
    }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    QString output;
    QString error;

private:
    TestHost &m_host;
    QProcess m_process;
};

/// What the latest run of the client has printed.
class LastRun {
protected:
    /// Its exit status, once it has ended.
    int runOn(TestHost &host, const QStringList &words)
    {
        Ctl ctl(host, words);
        const int status = ctl.end();
        output = ctl.output;
        error = ctl.error;
        return status;
    }

    QString output;
    QString error;
};
