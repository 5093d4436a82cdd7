#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

/// What a tool's process left behind.
struct ToolResult {
    int status = -1; ///< -1 if it did not start, did not end in time or was ended by a signal
    QString output;
    QString error;
};

/// A folder of its own for each test, in which the toolchain keeps its state too, and the built tools to run.
class ToolFixture : public testing::Test {
protected:
    static inline const QString codesign = QStringLiteral("/usr/bin/codesign");
    static inline const QString ditto = QStringLiteral("/usr/bin/ditto");
    static inline const QString keychain = QStringLiteral("/usr/bin/sealwright-keychain");
    static inline const QString security = QStringLiteral("/usr/bin/security");
    static inline const QString spctl = QStringLiteral("/usr/sbin/spctl");
    static inline const QString xattr = QStringLiteral("/usr/bin/xattr");
    static inline const QString xcrun = QStringLiteral("/usr/bin/xcrun");

    static inline const QString holder = QStringLiteral("Example Corp (A1B2C3D4E5)");
    static inline const QString identity =
        QStringLiteral("Developer ID Application: Example Corp (A1B2C3D4E5)");

    void SetUp() override;
    void TearDown() override;

    /// Ends the notary service of this test's state, if one runs.
    void stopService() const;

    /// False only if that is not so after minutes.
    [[nodiscard]] static bool waitUntil(const std::function<bool()> &isSo);

    /// Bytes that do not pack; the same each time.
    [[nodiscard]] static QByteArray randomBytes(int count);

    /// For a tool's process: no file of it may become longer than 64 KiB.
    static void limitFileSize();

    /// The folder of the built tools.
    [[nodiscard]] static QString toolRoot();

    /// A path inside the test's folder.
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }
    [[nodiscard]] QString statePath(const QString &name) const
    {
        return path(QStringLiteral("state/") + name);
    }

    /// Runs a tool, named by its path under the tool root, to its end. `inChild` runs in the new process
    /// first.
    [[nodiscard]] ToolResult run(const QString &tool, const QStringList &arguments,
                                 const QByteArray &input = {},
                                 const std::function<void()> &inChild = {}) const;

    /// Starts a tool and does not wait for it.
    [[nodiscard]] std::unique_ptr<QProcess> start(const QString &tool, const QStringList &arguments,
                                                  const std::function<void()> &inChild = {}) const;
    [[nodiscard]] static ToolResult finish(QProcess &process);

    /// Makes the identity that `identity` names.
    void makeIdentity() const;

    /// Keeps an API key of the local service under the name "item".
    void storePassword() const;

    /// Signs an item with the arguments that the application uses, save that no service is started for a time
    /// stamp.
    [[nodiscard]] ToolResult sign(const QString &item, const QStringList &moreArguments = {}) const;

    [[nodiscard]] ToolResult pack(const QString &item, const QString &archive) const;
    [[nodiscard]] ToolResult altool(const QStringList &arguments) const;
    [[nodiscard]] ToolResult upload(const QString &archive) const;
    [[nodiscard]] ToolResult info(const QString &uuid) const;

    /// The RequestUUID of an XML reply to an upload; empty if there is none.
    [[nodiscard]] static QString uuidIn(const ToolResult &reply);

    /// Waits, without asking, until the service has written down what its review found: it begins one by
    /// itself a while after an upload. What is asked from then on is answered by the number of questions
    /// alone.
    void waitForReview(const QString &uuid) const;

    /// Asks until the request is decided, and answers the last report.
    [[nodiscard]] ToolResult pollToTheEnd(const QString &uuid) const;

private:
    QTemporaryDir m_folder;
};
