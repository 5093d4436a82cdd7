// The working copy beside cp.

#include "rows.h"

#include "platform/posix/posixfileservice.h"
#include "support/items.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 200;
constexpr int filesInFolder = 100;
constexpr qsizetype fileBytes = 107'374; // 2 GiB in all

} // namespace

QList<Figure> rows::workingCopy()
{
    const QTemporaryDir place;
    const QString item = place.filePath(u"Item.app"_s);
    const QByteArray bytes(fileBytes, 'x');
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = item + u"/%1"_s.arg(folder);
        items::makeFolder(path);
        for (int file = 0; file < filesInFolder; ++file)
            items::makeFile(path + u"/%1"_s.arg(file), bytes);
    }
    platform::PosixFileService files;
    const QString copy = place.filePath(u"Copy.app"_s);
    // Both pay for the removal of what the other has made.
    const auto removeCopy = [&] { (void)files.removeItem(copy); };
    const double ratio = measuring::ratio(
        5,
        [&] {
            removeCopy();
            if (const auto copied = files.copyItem(item, copy); !copied)
                qFatal("%s", qPrintable(copied.error()));
        },
        [&] {
            removeCopy();
            measuring::runDiscarding({u"/usr/bin/cp"_s, u"-a"_s, item, copy});
        });
    return {{u"the working copy of 2 GiB in 20,000 files, over cp -a"_s, ratio, 1.05, {}}};
}
