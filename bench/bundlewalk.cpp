// The scanner's walk beside find.

#include "rows.h"
#include "signing/scandecisions.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include "support/items.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 1000;
constexpr int filesInFolder = 99;

} // namespace

QList<Figure> rows::bundleWalk()
{
    const QTemporaryDir place;
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = place.filePath(u"folder %1"_s.arg(folder));
        items::makeFolder(path);
        for (int file = 0; file < filesInFolder; ++file)
            items::makeFile(path + u"/file %1.png"_s.arg(file), "no code");
    }
    TestHost test;
    platform::PosixFileService files;
    FakeWindowFactory windows(test.applicationHost);
    AppDelegate application(test.host({.files = &files}), windows, test.configuration);
    const DocumentPtr document = application.addedDocument();
    const SingleSteps::Scanner scanner{*document};
    const double ratio = measuring::ratio(
        7,
        [&] {
            OrderedPathSet signableSet;
            QSet<QString> setToSubtract;
            scanner.parseDirectory(place.path(), signableSet, setToSubtract, {});
            if (!signableSet.paths().isEmpty())
                qFatal("code was found");
        },
        [&place] {
            measuring::runDiscarding({u"/usr/bin/find"_s, place.path(), u"-printf"_s, u"%y %m %p\n"_s});
        });
    return {{u"walking 100,000 entries without code, over find"_s, ratio, 1.5, {}}};
}
