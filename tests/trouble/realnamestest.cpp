// Odd names once more, carried through by the tools that come with the program.

#include "trouble/road.h"

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "support/items.h"

#include <QDir>
#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RoadKind kinds[] = {
    {.name = "quotesAndBlanks", .item = u"It's  \"Foo\".app"},
    {.name = "emojiAndALeadingDash", .item = u"-\U0001F680 Foo.app"},
    {.name = "decomposedAccents", .item = u"Cafe\u0301.app"},
    {.name = "decomposedAccentsAsADiskImage", .item = u"Cafe\u0301 au lait.app", .asDiskImage = true},
    {.name = "composedAccentsAsADiskImage", .item = u"Caf\u00e9 au lait.app", .asDiskImage = true},
    {.name = "anUpperCaseExtension", .item = u"FOO.APP"},
    {.name = "aLink", .item = u"Foo.app", .linkTo = u"Real Foo.app"},
};

void run(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished());
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

class RealTools : public testing::TestWithParam<RoadKind> {
protected:
    RealTools()
    {
        const QString root = host.tools.root();
        QDir(root).removeRecursively();
        EXPECT_TRUE(QFile::link(QStringLiteral(TOOLCHAIN_ROOT), root));
        qputenv("SEALWRIGHT_TOOLCHAIN_STATE", QFile::encodeName(host.item(u"../state"_s)));
        const QString keychain = root + u"/usr/bin/sealwright-keychain"_s;
        run(keychain, {u"make-identity"_s, u"--name"_s, u"Example Corp (A1B2C3D4E5)"_s});
        run(keychain, {u"make-api-key"_s, u"notary"_s});
        const QString real = GetParam().linkTo ? QString::fromUtf16(GetParam().linkTo) : name;
        run(u"cp"_s, {u"-a"_s, u"--"_s, QStringLiteral(SEALWRIGHT_SAMPLE_APP), host.item(real)});
        if (GetParam().linkTo)
            items::makeLink(host.item(name), real);
        host.preferences.setValue(key::createDiskImage, GetParam().asDiskImage);
        host.launch();
    }

    TestHost host;
    const QString name = QString::fromUtf16(GetParam().item);
};

} // namespace

TEST_P(RealTools, carryTheItemThrough)
{
    const QString base = itempath::withoutExtension(name);
    const QByteArray fingerprint = items::fingerprint(host.item(name));
    const QString real = GetParam().linkTo ? host.item(QString::fromUtf16(GetParam().linkTo)) : QString();
    const QByteArray realFingerprint = GetParam().linkTo ? items::fingerprint(real) : QByteArray();
    host.submitToTheEnd(host.item(name));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s)
        << host.log(LogStyle::error).join(u'\n').toStdString();
    host.window().answerSheet();
    const QString folder = base + u" - Notarized/"_s;
    EXPECT_EQ(items::fingerprint(host.item(folder + base + u" - Unmodified Original/"_s + name)),
              fingerprint);
    if (GetParam().linkTo) {
        EXPECT_EQ(items::fingerprint(real), realFingerprint);
    }
    const QString result = GetParam().asDiskImage ? QString(base).replace(u' ', u'_') + u".dmg"_s : name;
    EXPECT_TRUE(QFileInfo::exists(host.item(folder + result)));
    run(host.tools.root() + u"/usr/bin/xcrun"_s, {u"stapler"_s, u"validate"_s, host.item(folder + result)});
    ++Road::casesHeld;
}

INSTANTIATE_TEST_SUITE_P(WithTheName, RealTools, testing::ValuesIn(kinds),
                         [](const auto &row) { return std::string(row.param.name); });
