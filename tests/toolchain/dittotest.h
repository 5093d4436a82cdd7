#pragma once

#include "formats/fileattributes.h"
#include "formats/zip/zipoutput.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <tuple>

/// Packs and unpacks an app.
class Ditto : public ToolFixture {
protected:
    [[nodiscard]] QStringList archivesFolder() const
    {
        return QDir(path(QStringLiteral("out")))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    [[nodiscard]] ToolResult extract(const QString &archive, const QString &folder) const
    {
        return run(ditto, {QStringLiteral("-x"), QStringLiteral("-k"), archive, folder});
    }

    void packWithAttributes(const QStringList &options)
    {
        bundlebuilder::writeFile(path(QStringLiteral("tree/file")), "a script");
        for (auto attribute = m_attributes.begin(); attribute != m_attributes.end(); ++attribute)
            ASSERT_EQ(toolchain::writeAttribute(path(QStringLiteral("tree/file")), attribute.key(),
                                                attribute.value())
                          .error(),
                      QString());
        ASSERT_EQ(toolchain::writeAttribute(path(QStringLiteral("tree")), "on.the.folder", "1").error(),
                  QString());
        ASSERT_EQ(run(ditto,
                      QStringList{QStringLiteral("-c"), QStringLiteral("-k"), QStringLiteral("--keepParent")}
                          + options
                          + QStringList{path(QStringLiteral("tree")), path(QStringLiteral("out/a.zip"))})
                      .status,
                  0);
    }

    void expectAttributesBack() const
    {
        ASSERT_EQ(extract(path(QStringLiteral("out/a.zip")), path(QStringLiteral("out/unpacked"))).status, 0);
        EXPECT_EQ(*toolchain::readAttributes(path(QStringLiteral("out/unpacked/tree/file"))), m_attributes);
        EXPECT_EQ(
            toolchain::readAttributes(path(QStringLiteral("out/unpacked/tree")))->value("on.the.folder"),
            "1");
        EXPECT_FALSE(QFile::exists(path(QStringLiteral("out/unpacked/__MACOSX"))));
        EXPECT_EQ(bundlebuilder::readFile(path(QStringLiteral("out/unpacked/tree/file"))), "a script");
    }

    /// An archive with entries that the tool would not write.
    void writeArchive(const std::vector<std::tuple<QByteArray, quint16, QByteArray>> &entries) const
    {
        const QByteArray name = QFile::encodeName(path(QStringLiteral("crafted.zip")));
        const int file = open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        toolchain::zip::ZipOutput output(file, name.toStdString(), 6);
        for (const auto &[entry, mode, content] : entries)
            output.add({entry, mode, 1'500'000'000}, content);
        output.finish();
        EXPECT_EQ(output.outcome().error(), QString());
        close(file);
    }

    const toolchain::FileAttributes m_attributes{{"com.apple.FinderInfo", "TEXTttxt" + QByteArray(24, '\0')},
                                                 {"com.apple.ResourceFork", QByteArray(70'000, 'R')},
                                                 {"com.apple.cs.CodeDirectory", "a directory"},
                                                 {"com.apple.cs.CodeSignature", QByteArray(9000, 's')}};

    void SetUp() override
    {
        ToolFixture::SetUp();
        QDir().mkpath(path(QStringLiteral("out")));
        bundlebuilder::makeApp(path(QStringLiteral("My App.app")), QStringLiteral("com.example.app"));
    }
};
