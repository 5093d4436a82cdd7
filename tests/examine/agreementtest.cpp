// What a look says before is what codesign and the service's review say afterwards.

#include "examine/corpus.h"
#include "examine/examiner.h"
#include "examine/signingplace.h"
#include "formats/review/review.h"
#include "platform/posix/posixfileservice.h"
#include "platform/propertylist/propertylist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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

class Agreement : public SigningPlace {
protected:
    static QString signWithChoices(const QString &path, const QString &entitlements,
                                   const examine::Choices &choices)
    {
        const QStringList deep = choices.signsDeep ? QStringList{u"--deep"_s} : QStringList();
        return sign(
            path,
            deep + QStringList{u"-o"_s, u"runtime"_s, u"--entitlements"_s, entitlements, u"--verbose=4"_s});
    }

    /// Does with the item itself what a run does with its copy.
    static Verdict carryOut(const ItemMaker &item, examine::ItemKind kind)
    {
        if (kind == examine::ItemKind::package)
            return carryOutPackage(item);
        if (!item.choices.entitlementsError.isEmpty())
            return {true, item.choices.entitlementsError};
        const platform::PosixFileService files;
        const auto prediction = examine::predict(item.item(), kind, item.choices, files);
        for (auto passed = prediction.passedOver.cbegin(); passed != prediction.passedOver.cend(); ++passed) {
            if (*passed == PassedOver::leftover)
                QFile::remove(passed.key());
        }
        const QString entitlements = item.folder() + u"/Entitlements.plist"_s;
        QFile file(entitlements);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(platform::xmlPropertyListData(item.choices.entitlements).valueOr({}));
        file.close();
        for (const QString &path : prediction.order) {
            if (const QString problem = signWithChoices(path, entitlements, item.choices); !problem.isNull())
                return {true, problem};
        }
        return kind == examine::ItemKind::diskImage ? review(item.item()) : packAndReview(item);
    }

    static Verdict carryOutPackage(const ItemMaker &item)
    {
        const QString signedPackage = item.folder() + u"/Signed.pkg"_s;
        const QString problem = signPackage(item.item(), signedPackage);
        return problem.isNull() ? review(signedPackage) : Verdict{true, problem};
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

    static Verdict packAndReview(const ItemMaker &item)
    {
        const QString name =
            item.choices.packing == examine::Packing::zip ? u"Upload.zip"_s : u"Upload.dmg"_s;
        const QString archive = item.folder() + u'/' + name;
        const QString problem = pack(item, archive);
        return problem.isNull() ? review(archive) : Verdict{true, problem};
    }

    static Verdict review(const QString &archive)
    {
        const auto review = toolchain::review::reviewItem(archive, QFileInfo(archive).fileName());
        for (const auto &issue : review.issues) {
            if (issue.severity == "error"_L1)
                return {true, u"notary: %1: %2"_s.arg(issue.path, issue.message)};
        }
        return {};
    }
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
        const Verdict verdict = carryOut(item, examination->kind);
        EXPECT_EQ(examination->isRefused(), verdict.isRefused)
            << rulesOf(*examination).toStdString() << " | " << verdict.reason.toStdString();
        printRow(known, *examination, verdict);
    }
}
