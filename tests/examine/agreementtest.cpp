// What a look says before is what codesign and the service's review say afterwards.

#include "examine/corpus.h"
#include "examine/examiner.h"
#include "examine/timestampserver.h"
#include "formats/review/review.h"
#include "platform/posix/posixfileservice.h"
#include "platform/propertylist/propertylist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// What a run comes to.
struct Verdict {
    bool isRefused = false;
    QString reason; ///< the first one
};

class Agreement : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_state = std::make_unique<QTemporaryDir>();
        qputenv("SEALWRIGHT_TOOLCHAIN_STATE", s_state->path().toUtf8());
        const QString made = tool(u"sealwright-keychain"_s, {u"make-identity"_s, u"--name"_s, holder});
        ASSERT_EQ(made, QString()) << made.toStdString();
        s_server = std::make_unique<TimestampServer>(s_state->filePath(u"keychain"_s));
    }
    static void TearDownTestSuite()
    {
        s_server.reset();
        s_state.reset();
        qunsetenv("SEALWRIGHT_TOOLCHAIN_STATE");
    }

    /// What the tool said when it failed; null if it did not.
    static QString tool(const QString &name, const QStringList &arguments)
    {
        QProcess process;
        process.start(QString::fromUtf8(TOOLCHAIN_ROOT) + u"/usr/bin/"_s + name, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000)) << name.toStdString();
        if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
            return {};
        return name + u": "_s + QString::fromUtf8(process.readAllStandardError()).trimmed();
    }

    static QString sign(const QString &path, const QString &entitlements, const examine::Choices &choices)
    {
        const QStringList deep = choices.signsDeep ? QStringList{u"--deep"_s} : QStringList();
        return tool(u"codesign"_s,
                    deep
                        + QStringList{u"--force"_s, u"-o"_s, u"runtime"_s,
                                      u"--timestamp="_s + s_server->url(), u"--entitlements"_s, entitlements,
                                      u"--verbose=4"_s, u"-s"_s, u"Developer ID Application: "_s + holder,
                                      u"--digest-algorithm=sha1,sha256"_s, path});
    }

    /// Does with the item itself what a run does with its copy.
    static Verdict carryOut(const ItemMaker &item)
    {
        if (!item.choices.entitlementsError.isEmpty())
            return {true, item.choices.entitlementsError};
        const platform::PosixFileService files;
        const auto prediction = examine::predict(item.item(), examine::ItemKind::app, item.choices, files);
        for (auto passed = prediction.passedOver.cbegin(); passed != prediction.passedOver.cend(); ++passed) {
            if (*passed == PassedOver::leftover)
                QFile::remove(passed.key());
        }
        const QString entitlements = item.folder() + u"/Entitlements.plist"_s;
        QFile file(entitlements);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(platform::xmlPropertyListData(item.choices.entitlements).data);
        file.close();
        for (const QString &path : prediction.order) {
            if (const QString problem = sign(path, entitlements, item.choices); !problem.isNull())
                return {true, problem};
        }
        return review(item);
    }

    /// What packing said when it failed, as a run packs; null if it did not.
    static QString pack(const ItemMaker &item, const QString &archive)
    {
        if (item.choices.packing == examine::Packing::zip)
            return tool(u"ditto"_s, {u"-c"_s, u"-k"_s, u"--keepParent"_s, item.item(), archive});
        return tool(u"hdiutil"_s,
                    {u"create"_s, archive, u"-format"_s, u"UDZO"_s, u"-ov"_s, u"-volName"_s, u"Foo"_s,
                     u"-fs"_s, u"HFS+"_s, u"-srcfolder"_s, item.item(), u"-plist"_s, u"-verbose"_s});
    }

    static Verdict review(const ItemMaker &item)
    {
        const QString name = item.choices.packing == examine::Packing::zip ? u"Foo.zip"_s : u"Foo.dmg"_s;
        const QString archive = item.folder() + u'/' + name;
        const QString problem = pack(item, archive);
        if (!problem.isNull())
            return {true, problem};
        const auto review = toolchain::review::reviewItem(archive, name);
        for (const auto &issue : review.issues) {
            if (issue.severity == "error"_L1)
                return {true, u"notary: %1: %2"_s.arg(issue.path, issue.message)};
        }
        return {};
    }

    static inline const QString holder = QStringLiteral("Example Corp (A1B2C3D4E5)");
    static inline std::unique_ptr<QTemporaryDir> s_state;
    static inline std::unique_ptr<TimestampServer> s_server;
};

QString rulesOf(const examine::Examination &examination)
{
    QStringList rules;
    for (const examine::Finding &finding : examination.findings) {
        if (finding.severity == examine::Severity::error && !rules.contains(finding.rule))
            rules.append(finding.rule);
    }
    return rules.isEmpty() ? u"-"_s : rules.join(u',');
}

void printRow(const CorpusItem &known, const examine::Examination &examination, const Verdict &verdict)
{
    if (!qEnvironmentVariableIsSet("SEALWRIGHT_AGREEMENT_TABLE"))
        return;
    const bool agrees = examination.isRefused() == verdict.isRefused;
    std::printf(
        "%-9s %-55s %-30s %s\n", agrees ? "agrees" : "DIFFERS", known.name.c_str(),
        qUtf8Printable(rulesOf(examination)),
        qUtf8Printable(verdict.isRefused ? verdict.reason.section(u'\n', 0, 0).right(110) : u"accepted"_s));
}

} // namespace

TEST_F(Agreement, holdsForEveryItemOfTheCorpus)
{
    for (const CorpusItem &known : corpus()) {
        SCOPED_TRACE(known.name);
        ItemMaker item(known.architecture);
        known.make(item);
        const auto examination = examine::examineItem(item.item(), item.choices);
        ASSERT_TRUE(examination) << examination.error().toStdString();
        const Verdict verdict = carryOut(item);
        EXPECT_EQ(examination->isRefused(), verdict.isRefused)
            << rulesOf(*examination).toStdString() << " | " << verdict.reason.toStdString();
        printRow(known, *examination, verdict);
    }
}
