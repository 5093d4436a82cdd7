// A bundle held against its seal, and the rules of seals that others have made.

#include "toolchain/sealtest.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace toolchain;
using seal::Coverage;
using seal::Layout;
using seal::ProblemKind;

TEST_F(Seals, theCheckTellsAllThatDiffers)
{
    write(u"Resources/changed"_s);
    write(u"Resources/gone"_s);
    write(u"Resources/same"_s);
    link(u"Resources/link"_s, "same");
    const QByteArray bytes = make();
    EXPECT_EQ(lines(bytes), QStringList());
    write(u"Resources/changed"_s, "other");
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/gone"_s));
    write(u"Resources/added"_s);
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    link(u"Resources/link"_s, "changed");
    EXPECT_EQ(lines(bytes),
              (QStringList{u"file added: "_s + folder.base + u"/Resources/added"_s,
                           u"file modified: "_s + folder.base + u"/Resources/changed"_s,
                           u"file missing: "_s + folder.base + u"/Resources/gone"_s,
                           u"file modified: "_s + folder.base + u"/Resources/link"_s}));
}

TEST_F(Seals, aFileThatBecameALinkOrAFolderIsModified)
{
    write(u"Resources/file"_s);
    write(u"Resources/same"_s);
    const QByteArray bytes = make();
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/file"_s));
    link(u"Resources/file"_s, "same");
    EXPECT_EQ(lines(bytes), QStringList{u"file modified: "_s + folder.base + u"/Resources/file"_s});
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/file"_s));
    write(u"Resources/file/inner"_s);
    EXPECT_EQ(lines(bytes),
              (QStringList{u"file missing: "_s + folder.base + u"/Resources/file"_s,
                           u"file added: "_s + folder.base + u"/Resources/file/inner"_s}));
}

TEST_F(Seals, nestedCodeIsJudgedByTheOneWhoCan)
{
    write(u"MacOS/helper"_s);
    const QByteArray bytes = make();
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual,
                                          [&](const QString &path, const seal::Entry &entry) {
                                              EXPECT_EQ(path, folder.base + u"/MacOS/helper"_s);
                                              EXPECT_EQ(entry.cdHash, cdHash);
                                              return u"nested code is modified or invalid"_s;
                                          });
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].kind, ProblemKind::nested);
    EXPECT_EQ(problems[0].text, u"nested code is modified or invalid"_s);
    EXPECT_TRUE(problems[0].line().isNull());
}

TEST_F(Seals, aStrictCheckNamesObsoleteSealsAndBadLinks)
{
    write(u"Resources/file"_s);
    link(u"Resources/link"_s, "file");
    QByteArray bytes = make();
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    link(u"Resources/link"_s, "/etc/passwd");
    bytes.replace("<string>file</string>", "<string>/etc/passwd</string>");
    EXPECT_EQ(lines(bytes), QStringList());
    EXPECT_EQ(lines(bytes, seal::Strictness::strict),
              QStringList{u"invalid destination for symbolic link in bundle"_s});
    ASSERT_TRUE(QFile::remove(folder.base + u"/Resources/link"_s));
    QByteArray custom = make();
    custom.replace("<key>^PkgInfo$</key>", "<key>^Resources/ignored$</key>");
    EXPECT_EQ(lines(custom), QStringList());
    EXPECT_EQ(lines(custom, seal::Strictness::strict),
              QStringList{u"resource envelope is obsolete (custom omit rules)"_s});
    QByteArray old = make();
    old.replace("<key>files2</key>", "<key>other2</key>");
    EXPECT_EQ(lines(old), QStringList());
    EXPECT_EQ(lines(old, seal::Strictness::strict),
              QStringList{u"resource envelope is obsolete (version 1 signature)"_s});
}

TEST_F(Seals, aSealThatIsNoneIsToldAndNotBelieved)
{
    write(u"Resources/file"_s);
    const QByteArray bytes = make();
    for (qsizetype length = 0; length < bytes.size() - 12; length += 37) {
        const auto problems =
            seal::checkSeal(bytes.first(length), folder, seal::Strictness::usual, acceptAny);
        ASSERT_FALSE(problems.isEmpty()) << length;
        EXPECT_EQ(problems[0].kind, ProblemKind::badSeal) << length;
    }
}

TEST_F(Seals, tenThousandRulesAreRefused)
{
    write(u"Resources/file"_s);
    QByteArray rules;
    for (int number = 0; number < 10'000; ++number)
        rules += "<key>^(a|b)*" + QByteArray::number(number) + "$</key><true/>";
    QByteArray bytes = make();
    bytes.replace("<key>rules2</key>\n\t<dict>", "<key>rules2</key>\n\t<dict>" + rules);
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual, acceptAny);
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].text, u"the sealed resource directory is invalid"_s);
    EXPECT_EQ(problems[0].detail, u"more than 1000 rules"_s);
}

TEST_F(Seals, aRuleThatTakesForEverIsGivenUp)
{
    write(u"Resources/"_s + QString(200, u'a') + u"cb"_s);
    QByteArray bytes = make();
    bytes.replace("<key>rules2</key>\n\t<dict>",
                  "<key>rules2</key>\n\t<dict><key>(a+)+(a+)+(a+)+b$</key><dict><key>weight</key><real>9000</"
                  "real></dict>");
    const auto problems = seal::checkSeal(bytes, folder, seal::Strictness::usual, acceptAny);
    ASSERT_EQ(problems.size(), 1);
    EXPECT_EQ(problems[0].kind, ProblemKind::badSeal);
    EXPECT_TRUE(problems[0].detail.endsWith(u"a resource rule takes too long on this name"_s));
}

TEST_F(Seals, theBuiltInMatchersAgreeWithTheirExpressions)
{
    QList<QByteArray> paths;
    const QList<QByteArray> words{"Resources",
                                  "Base.lproj",
                                  "de.lproj",
                                  ".lproj",
                                  "locversion.plist",
                                  "locversionXplist",
                                  "version.plist",
                                  "versionXplist",
                                  "version\xc3\xa4plist",
                                  "Info.plist",
                                  "PkgInfo",
                                  ".DS_Store",
                                  "x.dSYM",
                                  "Frameworks",
                                  "Library",
                                  "LoginItems",
                                  "MacOS",
                                  "embedded.provisionprofile",
                                  "versionversion.plist",
                                  "a"};
    for (const QByteArray &first : words) {
        paths.append(first);
        for (const QByteArray &second : words) {
            paths.append(first + '/' + second);
            paths.append(first + second);
            for (const QByteArray &third : words)
                paths.append(first + '/' + second + '/' + third);
        }
    }
    for (const Layout layout : {Layout::withResources, Layout::flat}) {
        for (const auto *set : {&seal::firstRules(layout), &seal::secondRules(layout)}) {
            for (const seal::Rule &rule : set->rules()) {
                const auto one = seal::RuleSet::fromRules({rule});
                const QRegularExpression expression(rule.pattern);
                seal::Rule sealing = rule;
                sealing.coverage = Coverage::sealed;
                const auto only = seal::RuleSet::fromRules({sealing});
                for (const QByteArray &path : paths)
                    EXPECT_EQ(*only->coverageOf(path) == Coverage::sealed,
                              expression.match(QString::fromUtf8(path)).hasMatch())
                        << rule.pattern.toStdString() << ' ' << path.toStdString();
            }
        }
    }
}

TEST_F(Seals, theSealsFileIsReadOnlyWhereItIsOne)
{
    EXPECT_EQ(seal::readSealFile(folder.base).error(), u"code object is not signed at all"_s);
    write(u"_CodeSignature/CodeResources"_s, "seal");
    EXPECT_EQ(*seal::readSealFile(folder.base), "seal");
    ASSERT_TRUE(QFile::remove(folder.base + u"/_CodeSignature/CodeResources"_s));
    const QByteArray name = QFile::encodeName(folder.base + u"/_CodeSignature/CodeResources"_s);
    ASSERT_EQ(mkfifo(name.constData(), 0600), 0);
    EXPECT_TRUE(seal::readSealFile(folder.base).error().endsWith(u"not a regular file, or too large"_s));
    ASSERT_TRUE(QFile::remove(QFile::decodeName(name)));
    ASSERT_TRUE(QFile::link(u"/dev/zero"_s, QFile::decodeName(name)));
    EXPECT_FALSE(seal::readSealFile(folder.base));
}
