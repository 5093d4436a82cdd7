// The order that a look tells is the one in which the application then hands items to codesign.

#include "examine/codefiles.h"
#include "examine/itemmaker.h"
#include "examine/session.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

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
    const session::Ended ended = session::run(item.folder(), R"SCRIPT(
"$BIN/sealwrightctl" examine "$W/Foo.app" --json > "$W/look" || [ $? = 1 ]
"$BIN/sealwrightctl" sign "$W/Foo.app" --timeout 120
)SCRIPT");
    ASSERT_EQ(ended.status, 0) << ended.error.toStdString();
    const QStringList told = foretold(readFile(item.folder() + u"/look"_s));
    EXPECT_GE(told.size(), 12);
    EXPECT_EQ(
        told,
        carriedOut(readFile(item.folder() + u"/signed"_s), item.folder() + u"/Foo - Working/Foo.app"_s));
}
