// A look at a big app.

#include "rows.h"

#include "support/items.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 1000;
constexpr int filesInFolder = 100;
constexpr double mebibyte = 1024 * 1024;

QByteArray sampleCode()
{
    QFile file(QString::fromUtf8(SAMPLE_CODE));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("there is no sample code");
    return file.readAll();
}

void makeApp(const QString &app)
{
    const QByteArray code = sampleCode();
    items::makeBundle(app);
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = app + u"/Contents/Resources/folder %1"_s.arg(folder);
        items::makeFolder(path);
        items::makeFile(path + u"/tool"_s, code, true);
        for (int file = 0; file < filesInFolder; ++file)
            items::makeFile(path + u"/file %1.png"_s.arg(file), QByteArray(4900, 'x'));
    }
}

/// Whatever is found: the status is another one where something would be refused.
QStringList lookAt(const QString &app)
{
    return {u"/bin/sh"_s, u"-c"_s, u"\"$0\" \"$1\" > /dev/null || test $? = 1"_s, QString::fromUtf8(EXAMINE),
            app};
}

} // namespace

QList<Figure> rows::examination()
{
    const QTemporaryDir place;
    const QString app = place.filePath(u"Big.app"_s);
    makeApp(app);
    const double ratio = measuring::ratio(
        3, [&app] { measuring::runDiscarding(lookAt(app)); },
        [&app] {
            measuring::runDiscarding({u"/usr/bin/find"_s, app, u"-type"_s, u"f"_s, u"-exec"_s, u"head"_s,
                                      u"-q"_s, u"-c"_s, u"4096"_s, u"{}"_s, u"+"_s});
        });
    return {
        {u"examining 1,000 Mach-O files and 100,000 others, over find and head"_s, ratio, 2, {}},
        {u"peak memory of that"_s, double(measuring::peakMemoryOf(lookAt(app))) / mebibyte, 100, u"MiB"_s}};
}
