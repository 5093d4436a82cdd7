// The order that a look tells is the one in which the application then hands items to codesign.

#include "examine/codefiles.h"
#include "examine/itemmaker.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Starts the application on a bus of its own, with a tool root whose codesign writes down what it is given
/// and signs nothing; looks at an item, has it signed, and leaves both answers in files.
const QByteArray script = R"SCRIPT(set -eu
export XDG_RUNTIME_DIR=$W/run XDG_CONFIG_HOME=$W/config XDG_DATA_HOME=$W/data XDG_STATE_HOME=$W/state
export QT_QPA_PLATFORM=offscreen SEALWRIGHT_TOOLCHAIN_STATE=$W/toolchain
mkdir -p "$XDG_CONFIG_HOME/Sealwright"; mkdir -m 700 "$XDG_RUNTIME_DIR"
cp -a "$TOOLCHAIN" "$W/root"
cat > "$W/root/usr/bin/codesign" <<END
#!/bin/sh
for last; do :; done
printf '%s\n' "\$last" >> "$W/signed"
END
cat > "$W/root/usr/bin/security" <<'END'
#!/bin/sh
echo '  1) 0123456789012345678901234567890123456789 "Developer ID Application: Example Corp (A1B2C3D4E5)"'
END
chmod +x "$W/root/usr/bin/codesign" "$W/root/usr/bin/security"
printf '[General]\ntoolRoot=%s\ntoolPause=0\n' "$W/root" > "$XDG_CONFIG_HOME/Sealwright/Sealwright.conf"
"$BIN/sealwright" > "$W/log" 2>&1 & application=$!
trap 'kill $application' EXIT
for try in $(seq 300); do "$BIN/sealwrightctl" documents > "$W/documents" 2>&1 && break; sleep 0.1; done
"$BIN/sealwrightctl" examine "$W/Foo.app" --json > "$W/look" || [ $? = 1 ]
"$BIN/sealwrightctl" sign "$W/Foo.app" --timeout 120 > "$W/result"
)SCRIPT";

QByteArray readFile(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// The paths by their order.
QStringList foretold(const QByteArray &json)
{
    QMap<int, QString> byOrder;
    for (const auto &entry : QJsonDocument::fromJson(json).object().value("code"_L1).toArray()) {
        const QJsonObject code = entry.toObject();
        if (code.value("order"_L1).isDouble())
            byOrder.insert(code.value("order"_L1).toInt(), code.value("path"_L1).toString());
    }
    return byOrder.values();
}

/// The paths that were signed, from the copy.
QStringList carriedOut(const QByteArray &lines, const QString &copy)
{
    QStringList paths;
    for (const QByteArray &line : lines.trimmed().split('\n')) {
        const QString path = QFile::decodeName(line);
        paths.append(path == copy ? u"."_s : path.mid(copy.size() + 1));
    }
    return paths;
}

void fill(const ItemMaker &item)
{
    for (const QString &name : {u"alpha"_s, u"omega"_s, u"Zeta"_s, u"b.tool"_s})
        item.code(u"Contents/MacOS/"_s + name, codefiles::executable(u"universal"_s));
    for (const QString &name : {u"PlugIns/One.plugin"_s, u"PlugIns/Two.plugin"_s,
                                u"Frameworks/Kit.framework"_s, u"XPCServices/Service.xpc"_s})
        item.bundle(u"Contents/"_s + name, codefiles::loadable(u"x86_64"_s));
    item.bundle(u"Contents/Frameworks/Kit.framework/Versions/A/Helpers/Help.app"_s,
                codefiles::executable(u"arm64"_s));
    item.file(u"Contents/Frameworks/libone.dylib"_s, codefiles::library(u"arm64"_s));
    item.link(u"Contents/Frameworks/libtwo.dylib"_s, u"libone.dylib"_s);
    item.file(u"Contents/Resources/document.wflow"_s, "<plist/>");
    item.code(u"Contents/Resources/run.sh"_s, "#!/bin/sh\n");
    item.code(u"Contents/Resources/.hidden"_s, codefiles::executable(u"arm64"_s));
}

} // namespace

TEST(TheOrderOfARun, isTheOneThatALookTells)
{
    const ItemMaker item;
    fill(item);
    QProcess process;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"W"_s, item.folder());
    environment.insert(u"BIN"_s, QString::fromUtf8(PROGRAMS));
    environment.insert(u"TOOLCHAIN"_s, QString::fromUtf8(TOOLCHAIN_ROOT));
    process.setProcessEnvironment(environment);
    process.start(u"dbus-run-session"_s, {u"--"_s, u"bash"_s, u"-c"_s, QString::fromUtf8(script)});
    ASSERT_TRUE(process.waitForFinished(200'000));
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString()
                                     << readFile(item.folder() + u"/log"_s).toStdString();
    const QStringList told = foretold(readFile(item.folder() + u"/look"_s));
    EXPECT_GE(told.size(), 12);
    EXPECT_EQ(
        told,
        carriedOut(readFile(item.folder() + u"/signed"_s), item.folder() + u"/Foo - Working/Foo.app"_s));
}
