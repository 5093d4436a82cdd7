#pragma once

#include "formats/fileattributes.h"
#include "formats/udif/udiftables.h"
#include "formats/udif/udifwriter.h"
#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"
#include "toolchain/lzfseimage.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

/// Attaches an image of an app.
class HdiutilAttach : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        bundlebuilder::makeApp(path(QStringLiteral("My App.app")), QStringLiteral("com.example.app"));
        m_image = imageOf(path(QStringLiteral("My App.app")));
    }

    [[nodiscard]] ToolResult detach(const QStringList &arguments) const
    {
        return run(hdiutil, QStringList{QStringLiteral("detach")} + arguments);
    }

    /// A copy of the image with another byte at an offset.
    [[nodiscard]] QString damagedImage(qsizetype offset) const
    {
        QByteArray bytes = bundlebuilder::readFile(m_image);
        bytes[offset] = char(~bytes[offset]);
        bundlebuilder::writeFile(path(QStringLiteral("damaged.dmg")), bytes);
        return path(QStringLiteral("damaged.dmg"));
    }

    void expectNothingAttached() const
    {
        EXPECT_EQ(namesIn(statePath(QStringLiteral("diskimages/attached"))), QStringList());
        EXPECT_EQ(namesIn(statePath(QStringLiteral("diskimages/volumes"))), QStringList());
    }

    QString m_image;
};
