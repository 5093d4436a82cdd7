#pragma once

#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

/// Has an app signed and notarized.
class Altool : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        storePassword();
        bundlebuilder::makeApp(app(), QStringLiteral("com.example.app"));
    }

    [[nodiscard]] QString app() const { return path(QStringLiteral("My App.app")); }
    [[nodiscard]] QString archive() const { return path(QStringLiteral("My App.zip")); }

    /// As the service wants it: with the time vouched for.
    [[nodiscard]] ToolResult signWithTime(const QString &item) const
    {
        return run(codesign,
                   {QStringLiteral("--deep"), QStringLiteral("-o"), QStringLiteral("runtime"),
                    QStringLiteral("--timestamp"), QStringLiteral("-s"), identity, item});
    }

    void makeSignedArchive() const
    {
        const ToolResult signing = signWithTime(app());
        ASSERT_EQ(signing.status, 0) << signing.error.toStdString();
        ASSERT_EQ(pack(app(), archive()).status, 0);
    }

    /// What the two patterns find in a report with which its reader looks at it.
    static QString verdictIn(const ToolResult &report)
    {
        return QRegularExpression(QStringLiteral("(?m)Status: (.+?)$")).match(report.output).captured(1);
    }
    static QString logUrlIn(const ToolResult &report)
    {
        return QRegularExpression(QStringLiteral("(?m)LogFileURL: (.+?)$")).match(report.output).captured(1);
    }
    static QJsonObject logOf(const ToolResult &report)
    {
        return QJsonDocument::fromJson(bundlebuilder::readFile(QUrl(logUrlIn(report)).toLocalFile()))
            .object();
    }

    static QString uuidOf(int number)
    {
        return QStringLiteral("%1-0000-4000-8000-000000000000").arg(number, 8, 10, QChar(u'0'));
    }
    /// Keeps an approved request, which is the newer the higher its number is.
    void storeRequest(int number) const
    {
        const QDateTime uploaded = QDateTime(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC).addSecs(60 * number);
        const QJsonObject form{{QStringLiteral("RequestUUID"), uuidOf(number)},
                               {QStringLiteral("archive"), QStringLiteral("My App.zip")},
                               {QStringLiteral("sha256"), QStringLiteral("00")},
                               {QStringLiteral("primaryBundleID"), QStringLiteral("com.example.app")},
                               {QStringLiteral("uploaded"), uploaded.toString(Qt::ISODate)},
                               {QStringLiteral("issues"), QJsonArray()},
                               {QStringLiteral("polls"), 3}};
        // Named against the order in which they were uploaded.
        bundlebuilder::writeFile(
            statePath(QStringLiteral("notary/requests/%1.json").arg(uuidOf(999 - number))),
            QJsonDocument(form).toJson());
    }

    /// What a property list says about a page of the history.
    [[nodiscard]] QVariantMap historyEntries(const QString &page) const
    {
        const ToolResult reply = altool({QStringLiteral("--notarization-history"), page,
                                         QStringLiteral("--output-format"), QStringLiteral("xml")});
        EXPECT_EQ(reply.status, 0) << reply.error.toStdString();
        const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
        return list.value(QStringLiteral("notarization-history")).toMap();
    }

    [[nodiscard]] QVariantList providerEntries() const
    {
        const ToolResult reply = altool(
            {QStringLiteral("--list-providers"), QStringLiteral("--output-format"), QStringLiteral("xml")});
        EXPECT_EQ(reply.status, 0) << reply.error.toStdString();
        const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
        EXPECT_TRUE(list.contains(QStringLiteral("providers")));
        return list.value(QStringLiteral("providers")).toList();
    }

    /// Uploads the archive and answers the messages of the log that goes with the refusal, by their paths.
    [[nodiscard]] QMap<QString, QString> issuesOfRefusal() const
    {
        const ToolResult report = pollToTheEnd(uuidIn(upload(archive())));
        EXPECT_EQ(verdictIn(report), QStringLiteral("invalid"));
        EXPECT_EQ(logOf(report).value(QStringLiteral("status")).toString(), QStringLiteral("Invalid"));
        QMap<QString, QString> messages;
        for (const QJsonValue &issue : logOf(report).value(QStringLiteral("issues")).toArray())
            messages.insert(issue[QStringLiteral("path")].toString(),
                            issue[QStringLiteral("message")].toString());
        return messages;
    }
};
