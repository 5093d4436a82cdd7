#pragma once

#include "formats/codesignature/signaturereader.h"
#include "formats/fileattributes.h"
#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

#include <QDirIterator>

/// Where a bundle has its seal.
inline const QString seal = QStringLiteral("/Contents/_CodeSignature/CodeResources");

/// Signs an app with an identity of the test's own.
class Codesign : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        bundlebuilder::makeApp(app(), QStringLiteral("com.example.app"));
    }

    [[nodiscard]] QString app() const { return path(QStringLiteral("My App.app")); }
    [[nodiscard]] QString contents(const QString &name) const
    {
        return app() + QStringLiteral("/Contents/") + name;
    }

    static QVariantMap sealedFiles(const QString &sealPath, const QString &key = QStringLiteral("files2"))
    {
        return platform::propertyListFromData(bundlebuilder::readFile(sealPath))
            .valueOr({})
            .toMap()
            .value(key)
            .toMap();
    }

    /// Every path below Contents that a seal should name.
    [[nodiscard]] QStringList expectedPaths() const
    {
        QStringList paths;
        QDirIterator entries(contents({}), QDir::Files | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
        const QString framework = QStringLiteral("Frameworks/Inner.framework");
        while (entries.hasNext()) {
            const QString entry = entries.next().mid(contents({}).size());
            if (!entry.startsWith(framework))
                paths.append(entry);
        }
        for (const QString &omitted : {QStringLiteral("Info.plist"), QStringLiteral("MacOS/My App"),
                                       QStringLiteral("Resources/.DS_Store")})
            EXPECT_TRUE(paths.removeOne(omitted)) << omitted.toStdString();
        paths.append(framework); // code inside is one entry
        paths.sort();
        return paths;
    }
};
