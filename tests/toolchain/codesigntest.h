#pragma once

#include "formats/codesignature/signaturereader.h"
#include "formats/fileattributes.h"
#include "platform/propertylist/propertylist.h"
#include "toolchain/apptotest.h"
#include "toolchain/machobuilder.h"

#include <QDirIterator>

/// Where a bundle has its seal.
inline const QString seal = QStringLiteral("/Contents/_CodeSignature/CodeResources");

/// Signs the app.
class Codesign : public AppToTest {
protected:
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
