#pragma once

#include "formats/package/expansion.h"
#include "formats/resourceseal/bundleseal.h"
#include "formats/resourceseal/filedigests.h"
#include "formats/resourceseal/sealcheck.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <sys/stat.h>

/// Of all nested code.
inline const QByteArray cdHash(20, 'c');

inline platform::Result<toolchain::seal::NestedCode> describeAny(const QString &)
{
    return toolchain::seal::NestedCode{cdHash, QStringLiteral("identifier \"nested\"")};
}

inline QString acceptAny(const QString &, const toolchain::seal::Entry &)
{
    return {};
}

/// The seal of a folder that a test fills.
class Seals : public ToolFixture {
protected:
    void write(const QString &name, const QByteArray &bytes = "bytes") const
    {
        bundlebuilder::writeFile(folder.base + u'/' + name, bytes);
    }
    void link(const QString &name, const QByteArray &target) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(folder.base + u'/' + name).path()));
        ASSERT_TRUE(QFile::link(QString::fromUtf8(target), folder.base + u'/' + name));
    }

    [[nodiscard]] QByteArray make(toolchain::seal::Digests digests = toolchain::seal::Digests::sha256) const
    {
        const auto result = toolchain::seal::makeSeal(folder, digests, describeAny);
        EXPECT_TRUE(result) << result.error().toStdString();
        return result ? *result : QByteArray();
    }
    [[nodiscard]] toolchain::seal::CodeSeal
    parts(toolchain::seal::Digests digests = toolchain::seal::Digests::sha256) const
    {
        const auto result = toolchain::seal::readSeal(make(digests));
        EXPECT_TRUE(result) << result.error().toStdString();
        return result ? *result : toolchain::seal::CodeSeal();
    }
    [[nodiscard]] QStringList
    lines(const QByteArray &bytes,
          toolchain::seal::Strictness strictness = toolchain::seal::Strictness::usual) const
    {
        QStringList result;
        for (const toolchain::seal::Problem &problem :
             toolchain::seal::checkSeal(bytes, folder, strictness, acceptAny))
            result.append(problem.line().isNull() ? problem.text : problem.line());
        return result;
    }
    [[nodiscard]] QString errorOfMaking() const
    {
        return toolchain::seal::makeSeal(folder, toolchain::seal::Digests::sha256, describeAny).error();
    }

    toolchain::seal::SealedFolder folder{path(QStringLiteral("App.app/Contents")),
                                         toolchain::seal::Layout::withResources, "MacOS/App"};
};

inline QByteArray sha256(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}
inline QByteArray sha1(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}
