#include "examine/codefiles.h"

#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished()) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
}

struct Wanted {
    QString architecture;
    QStringList link; ///< options of the linker; none: only compile
    QString sdk = u"11.0"_s;
};

QByteArray made(const Wanted &wanted)
{
    const QTemporaryDir folder;
    const QString source = folder.filePath(u"code.c"_s);
    QFile file(source);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("int main(void) { return 0; }\n");
    file.close();
    const QString object = folder.filePath(u"code.o"_s);
    run(QString::fromUtf8(CLANG),
        {u"--target=%1-apple-macos11"_s.arg(wanted.architecture), u"-c"_s, source, u"-o"_s, object});
    if (wanted.link.isEmpty())
        return readFile(object);
    const QString linked = folder.filePath(u"code"_s);
    run(QString::fromUtf8(LD64),
        QStringList{u"-arch"_s, wanted.architecture, u"-platform_version"_s, u"macos"_s, wanted.sdk,
                    wanted.sdk, u"-undefined"_s, u"dynamic_lookup"_s, object, u"-o"_s, linked}
            + wanted.link);
    return readFile(linked);
}

QByteArray universal(const QByteArray &first, const QByteArray &second)
{
    const QTemporaryDir folder;
    QStringList names;
    for (const QByteArray &bytes : {first, second}) {
        QFile file(folder.filePath(u"slice%1"_s.arg(names.size())));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        names.append(file.fileName());
    }
    run(QString::fromUtf8(LIPO),
        QStringList{u"-create"_s} + names + QStringList{u"-output"_s, folder.filePath(u"out"_s)});
    return readFile(folder.filePath(u"out"_s));
}

/// Makes each file once, on the test program's one thread.
QByteArray remembered(const QString &architecture, const QStringList &link, const QString &sdk = u"11.0"_s)
{
    static QHash<QString, QByteArray> files;
    const QString key = architecture + link.join(u' ') + sdk;
    if (!files.contains(key)) {
        const QByteArray bytes = architecture == "universal"_L1
            ? universal(remembered(u"x86_64"_s, link, sdk), remembered(u"arm64"_s, link, sdk))
            : made({architecture, link, sdk});
        files.insert(key, bytes);
    }
    return files.value(key);
}

} // namespace

namespace codefiles {

QByteArray executable(const QString &architecture)
{
    return remembered(architecture, {u"-e"_s, u"_main"_s});
}

QByteArray library(const QString &architecture)
{
    return remembered(architecture, {u"-dylib"_s, u"-install_name"_s, u"@rpath/libx.dylib"_s});
}

QByteArray loadable(const QString &architecture)
{
    return remembered(architecture, {u"-bundle"_s});
}

QByteArray object(const QString &architecture)
{
    return remembered(architecture, {});
}

QByteArray oldExecutable()
{
    return remembered(u"x86_64"_s, {u"-e"_s, u"_main"_s}, u"10.8"_s);
}

QByteArray library32()
{
    // MH_MAGIC, CPU_TYPE_X86, MH_DYLIB and one LC_UUID, as Apple's <mach-o/loader.h> has them.
    QByteArray bytes = QByteArray::fromHex("cefaedfe"
                                           "07000000"
                                           "03000000"
                                           "06000000"
                                           "01000000"
                                           "18000000"
                                           "00000000");
    bytes += QByteArray::fromHex("1b00000018000000000102030405060708090a0b0c0d0e0f");
    return bytes + QByteArray(4096, 'x');
}

} // namespace codefiles
