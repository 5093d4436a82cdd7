#include "toolchain/keychainfixture.h"

#include "formats/statefolder.h"
#include "toolchain/bundlebuilder.h"

using namespace Qt::StringLiterals;

QByteArray readTestData(const QString &name)
{
    const QByteArray bytes = bundlebuilder::readFile(QStringLiteral(TEST_DATA) + u'/' + name);
    EXPECT_FALSE(bytes.isEmpty()) << name.toStdString();
    return bytes;
}

void KeychainFixture::SetUp()
{
    ToolFixture::SetUp();
    qputenv("SEALWRIGHT_TOOLCHAIN_STATE", path(u"state"_s).toUtf8());
}

void KeychainFixture::TearDown()
{
    qunsetenv("SEALWRIGHT_TOOLCHAIN_STATE");
}

void KeychainFixture::makeIdentity(toolchain::IdentityKind kind) const
{
    const auto made = toolchain::makeIdentity(toolchain::keychainFolder(), holder, kind);
    ASSERT_TRUE(made) << made.error().toStdString();
}

bool KeychainFixture::opensslVerifies(const QByteArray &cms, const QByteArray &content) const
{
    bundlebuilder::writeFile(path(u"cms"_s), cms);
    bundlebuilder::writeFile(path(u"content"_s), content);
    return run(u"openssl"_s,
               {u"cms"_s, u"-verify"_s, u"-noverify"_s, u"-binary"_s, u"-inform"_s, u"DER"_s, u"-in"_s,
                path(u"cms"_s), u"-content"_s, path(u"content"_s), u"-out"_s, path(u"checked"_s)})
               .status
        == 0;
}
