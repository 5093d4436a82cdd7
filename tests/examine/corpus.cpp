#include "examine/corpus.h"

#include "examine/codefiles.h"
#include "examine/corpusmaking.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

void addHarmless(Corpus &corpus)
{
    corpus.forEach(u"an app alone"_s, [](ItemMaker &, const QString &) {});
    const QStringList places{u"MacOS"_s, u"Frameworks"_s, u"Helpers"_s, u"Resources"_s, u"Resources/bin"_s};
    for (const QString &place : places) {
        corpus.forEach(u"a tool in "_s + place, [place](ItemMaker &item, const QString &architecture) {
            item.code(u"Contents/"_s + place + u"/tool"_s, codefiles::executable(architecture));
        });
        corpus.forEach(u"a library in "_s + place, [place](ItemMaker &item, const QString &architecture) {
            item.file(u"Contents/"_s + place + u"/libx.dylib"_s, codefiles::library(architecture));
        });
    }
    for (const QString &name :
         {u"PlugIns/Bar.plugin"_s, u"XPCServices/Bar.xpc"_s, u"Frameworks/Bar.framework"_s,
          u"Library/LoginItems/Bar.app"_s, u"Resources/Bar.bundle"_s}) {
        corpus.forEach(u"nested "_s + name, [name](ItemMaker &item, const QString &architecture) {
            item.bundle(u"Contents/"_s + name, codefiles::loadable(architecture));
        });
    }
}

void addHarmlessLookalikes(Corpus &corpus)
{
    corpus.add(u"a script in Resources"_s,
               [](ItemMaker &item) { item.code(u"Contents/Resources/run.sh"_s, "#!/bin/sh\n"); });
    corpus.add(u"a Java class"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/Foo.class"_s,
                  QByteArray::fromHex("cafebabe00000034001d") + QByteArray(64, 'x'));
    });
    corpus.add(u"a hidden text"_s,
               [](ItemMaker &item) { item.file(u"Contents/Resources/.hidden"_s, "text"); });
    corpus.add(u"a Finder mark"_s,
               [](ItemMaker &item) { item.file(u"Contents/Resources/.DS_Store"_s, "\0\0\0\1Bud1"); });
    corpus.add(u"a leftover that a run deletes"_s,
               [](ItemMaker &item) { item.file(u"Contents/Scriptbench.plist"_s, "<plist/>"); });
    corpus.add(u"a provisioning profile"_s,
               [](ItemMaker &item) { item.file(u"Contents/embedded.provisionprofile"_s, "profile"); });
    corpus.add(u"a version list"_s,
               [](ItemMaker &item) { item.file(u"Contents/version.plist"_s, "<plist/>"); });
    corpus.add(u"an archive of texts"_s, [](ItemMaker &item) {
        item.archive(u"Contents/Resources/texts.zip"_s, {{u"a.txt"_s, "text"}, {u"b/c.txt"_s, "text"}});
    });
    corpus.add(u"a compressed text"_s,
               [](ItemMaker &item) { item.gzip(u"Contents/Resources/a.txt.gz"_s, "text"); });
    corpus.add(u"an object file that is no program"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/code.o"_s, codefiles::object(u"arm64"_s));
    });
    corpus.add(u"a link within"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/a.txt"_s, "text");
        item.link(u"Contents/Resources/b.txt"_s, u"a.txt"_s);
    });
    corpus.add(u"a link to a folder within"_s,
               [](ItemMaker &item) { item.link(u"Contents/Resources/all"_s, u"../Resources"_s); });
    corpus.add(u"a link into System"_s, [](ItemMaker &item) {
        item.link(u"Contents/Resources/kit"_s, u"/System/Library/Frameworks/AppKit.framework"_s);
    });
    corpus.add(u"a link into Library"_s, [](ItemMaker &item) {
        item.link(u"Contents/Resources/kit"_s, u"/Library/Frameworks/Some.framework"_s);
    });
    corpus.add(u"a resource bundle without code in Resources"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/Pictures.bundle/Contents/Info.plist"_s,
                  "<plist "
                  "version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>com.example.pictures</string></"
                  "dict></plist>");
    });
    corpus.add(u"a bundle in Resources whose executable is missing"_s, [](ItemMaker &item) {
        item.info(u"Contents/Resources/Pictures.bundle/Contents"_s, u"Gone"_s, u"com.example.pictures"_s);
    });
    corpus.add(u"an empty file"_s, [](ItemMaker &item) { item.code(u"Contents/Resources/empty"_s, {}); });
    corpus.add(u"a file of four magic bytes that is none"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/four"_s, QByteArray::fromHex("cafed00d"));
    });
    corpus.add(u"a nested app in Resources"_s, [](ItemMaker &item) {
        item.bundle(u"Contents/Resources/Tool.app"_s, codefiles::executable(u"universal"_s));
    });
    corpus.add(u"names of other scripts"_s, [](ItemMaker &item) {
        item.file(QString::fromUtf8("Contents/Resources/\xc3\xa9t\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac.txt"),
                  "text");
    });
    corpus.add(u"signed code in a hidden folder's text"_s,
               [](ItemMaker &item) { item.file(u"Contents/Resources/.git/config"_s, "[core]"); });
}

void addUnsigned(Corpus &corpus)
{
    for (const QString &name : {u"Resources/.hidden"_s, u"MacOS/.tool"_s, u"Resources/.folder/tool"_s}) {
        corpus.forEach(u"hidden code "_s + name,
                       [name](ItemMaker &item, const QString &architecture) {
                           item.code(u"Contents/"_s + name, codefiles::executable(architecture));
                       },
                       {u"unsigned-code Contents/"_s + name});
    }
    for (const QString &place : {u"Resources"_s, u"Helpers"_s}) {
        corpus.forEach(u"code that is not executable in "_s + place,
                       [place](ItemMaker &item, const QString &architecture) {
                           item.file(u"Contents/"_s + place + u"/tool"_s,
                                     codefiles::executable(architecture));
                       },
                       {u"unsigned-code Contents/"_s + place + u"/tool"_s});
    }
    for (const QString &extension : {u"txt"_s, u"h"_s, u"strings"_s, u"rtf"_s, u"scpt"_s, u"TXT"_s}) {
        const QString name = u"Contents/Resources/tool."_s + extension;
        corpus.add(u"code that ends in "_s + extension,
                   [name](ItemMaker &item) { item.code(name, codefiles::executable(u"arm64"_s)); },
                   {u"unsigned-code "_s + name});
    }
    corpus.add(u"code called CodeResources"_s,
               [](ItemMaker &item) {
                   item.code(u"Contents/Resources/CodeResources"_s, codefiles::executable(u"x86_64"_s));
               },
               {u"unsigned-code Contents/Resources/CodeResources"_s});
    corpus.add(u"a library for i386"_s,
               [](ItemMaker &item) { item.code(u"Contents/Resources/lib32"_s, codefiles::library32()); },
               {u"unsigned-code Contents/Resources/lib32"_s});
    for (const QString &place : {u"MacOS"_s, u"Frameworks"_s, u"Helpers"_s, u"PlugIns"_s}) {
        corpus.add(
            u"a script in "_s + place,
            [place](ItemMaker &item) { item.code(u"Contents/"_s + place + u"/run.sh"_s, "#!/bin/sh\n"); },
            {u"unsigned-code Contents/"_s + place + u"/run.sh"_s});
    }
    corpus.add(u"a setting in MacOS"_s,
               [](ItemMaker &item) { item.file(u"Contents/MacOS/app.ini"_s, "a=b"); },
               {u"unsigned-code Contents/MacOS/app.ini"_s});
    corpus.add(u"a checksum in Contents"_s,
               [](ItemMaker &item) { item.file(u"Contents/Info.plist.md5"_s, "abc"); },
               {u"unsigned-code Contents/Info.plist.md5"_s});
    corpus.add(u"a resource bundle in Frameworks"_s,
               [](ItemMaker &item) { item.file(u"Contents/Frameworks/Pictures.bundle/a.png"_s, "png"); },
               {u"unsigned-code Contents/Frameworks/Pictures.bundle"_s});
    corpus.add(u"code at the top of a framework without versions"_s,
               [](ItemMaker &item) {
                   item.code(u"Contents/Resources/Flat.framework/Flat"_s, codefiles::library(u"x86_64"_s));
               },
               {u"unsigned-code Contents/Resources/Flat.framework/Flat"_s});
}

void addSkipped(Corpus &corpus)
{
    corpus.forEach(u"a path to skip"_s,
                   [](ItemMaker &item, const QString &architecture) {
                       item.code(u"Contents/Resources/tool"_s, codefiles::executable(architecture));
                       item.choices.skipPaths = {u"Contents/Resources/tool"_s};
                   },
                   {u"skipped-code Contents/Resources/tool"_s});
    corpus.add(u"a folder to skip"_s,
               [](ItemMaker &item) {
                   item.bundle(u"Contents/PlugIns/Bar.plugin"_s, codefiles::loadable(u"x86_64"_s));
                   item.choices.skipPaths = {u"Contents/PlugIns"_s};
               },
               {u"skipped-code Contents/PlugIns/Bar.plugin"_s});
    corpus.add(u"a path to skip that holds no code"_s, [](ItemMaker &item) {
        item.file(u"Contents/Resources/a.txt"_s, "text");
        item.choices.skipPaths = {u"Contents/Resources/a.txt"_s};
    });
    corpus.forEach(u"only the main item is signed"_s,
                   [](ItemMaker &item, const QString &architecture) {
                       item.code(u"Contents/Resources/tool"_s, codefiles::executable(architecture));
                       item.choices.signsMainItemOnly = true;
                   },
                   {u"skipped-code Contents/Resources/tool"_s});
    corpus.add(u"only the main item, which is all"_s,
               [](ItemMaker &item) { item.choices.signsMainItemOnly = true; });
}

void addArchives(Corpus &corpus)
{
    for (const QString &extension : {u"zip"_s, u"jar"_s, u"whl"_s, u"tar"_s, u"tgz"_s, u"tar.gz"_s}) {
        const QString name = u"Contents/Resources/packed."_s + extension;
        corpus.forEach(
            u"code in "_s + extension,
            [name](ItemMaker &item, const QString &architecture) {
                item.archive(name,
                             {{u"doc.txt"_s, "text"}, {u"bin/tool"_s, codefiles::executable(architecture)}});
            },
            {u"code-in-archive "_s + name + u"/bin/tool"_s});
    }
    corpus.forEach(u"a compressed program"_s,
                   [](ItemMaker &item, const QString &architecture) {
                       item.gzip(u"Contents/Resources/tool.gz"_s, codefiles::executable(architecture));
                   },
                   {u"code-in-archive Contents/Resources/tool.gz/tool"_s});
    corpus.add(u"an archive in an archive"_s,
               [](ItemMaker &item) {
                   const QByteArray inner =
                       item.archiveBytes(u"zip"_s, {{u"tool"_s, codefiles::executable(u"x86_64"_s)}});
                   item.archive(u"Contents/Resources/outer.tar"_s, {{u"inner.zip"_s, inner}});
               },
               {u"code-in-archive Contents/Resources/outer.tar/inner.zip/tool"_s});
    corpus.add(u"two programs in an archive"_s,
               [](ItemMaker &item) {
                   item.archive(u"Contents/Resources/a.zip"_s,
                                {{u"one"_s, codefiles::executable(u"x86_64"_s)},
                                 {u"two"_s, codefiles::library(u"arm64"_s)}});
               },
               {u"code-in-archive Contents/Resources/a.zip/one"_s,
                u"code-in-archive Contents/Resources/a.zip/two"_s});
    corpus.add(u"an object in an archive"_s, [](ItemMaker &item) {
        item.archive(u"Contents/Resources/a.zip"_s, {{u"one.o"_s, codefiles::object(u"x86_64"_s)}});
    });
}

void addBrokenCode(Corpus &corpus)
{
    corpus.add(u"a program with an old SDK"_s,
               [](ItemMaker &item) { item.code(u"Contents/Resources/old"_s, codefiles::oldExecutable()); },
               {u"old-sdk Contents/Resources/old"_s});
    corpus.add(u"an app with an old SDK"_s,
               [](ItemMaker &item) { item.code(u"Contents/MacOS/Foo"_s, codefiles::oldExecutable()); },
               {u"old-sdk ."_s});
    for (const int length : {12, 40, 300, 5000}) {
        corpus.add(u"code cut after %1 bytes"_s.arg(length),
                   [length](ItemMaker &item) {
                       item.code(u"Contents/Resources/cut"_s,
                                 codefiles::executable(u"arm64"_s).first(length));
                   },
                   {u"damaged-code Contents/Resources/cut"_s});
    }
    corpus.add(u"a universal file cut in its second slice"_s,
               [](ItemMaker &item) {
                   const QByteArray whole = codefiles::executable(u"universal"_s);
                   item.code(u"Contents/Resources/cut"_s, whole.first(whole.size() / 2));
               },
               {u"damaged-code Contents/Resources/cut"_s});
    corpus.add(u"a debugging entitlement"_s,
               [](ItemMaker &item) {
                   item.choices.entitlements.insert(u"com.apple.security.get-task-allow"_s, true);
               },
               {u"get-task-allow ."_s});
    corpus.add(u"a debugging entitlement that is false"_s, [](ItemMaker &item) {
        item.choices.entitlements.insert(u"com.apple.security.get-task-allow"_s, false);
    });
}

void addBrokenBundles(Corpus &corpus)
{
    corpus.add(u"no executable"_s, [](ItemMaker &item) { item.remove(u"Contents/MacOS/Foo"_s); },
               {u"missing-executable ."_s});
    corpus.add(u"an executable of another name"_s,
               [](ItemMaker &item) { item.info(u"Contents"_s, u"Bar"_s, u"com.example.foo"_s); },
               {u"missing-executable ."_s});
    corpus.add(u"a plug-in without its executable"_s,
               [](ItemMaker &item) {
                   item.info(u"Contents/PlugIns/Bar.plugin/Contents"_s, u"Bar"_s, u"com.example.bar"_s);
               },
               {u"missing-executable Contents/PlugIns/Bar.plugin"_s});
    corpus.add(u"no description"_s, [](ItemMaker &item) { item.remove(u"Contents/Info.plist"_s); },
               {u"invalid-info-plist ."_s});
    corpus.add(u"a damaged description"_s,
               [](ItemMaker &item) { item.file(u"Contents/Info.plist"_s, "<plist><dict><key>"); },
               {u"invalid-info-plist ."_s});
    corpus.add(u"a description that is a list"_s,
               [](ItemMaker &item) {
                   item.file(u"Contents/Info.plist"_s, "<plist version=\"1.0\"><array/></plist>");
               },
               {u"invalid-info-plist ."_s});
    corpus.add(u"an app that is a framework too"_s,
               [](ItemMaker &item) { item.file(u"Versions/A/Resources/a.txt"_s, "text"); },
               {u"ambiguous-bundle ."_s, u"unsealed-root Versions"_s});
    corpus.add(u"a text beside Contents"_s, [](ItemMaker &item) { item.file(u"Read Me.txt"_s, "text"); },
               {u"unsealed-root Read Me.txt"_s});
    corpus.add(u"the Finder's notes beside Contents"_s,
               [](ItemMaker &item) { item.file(u".DS_Store"_s, "notes"); });
    corpus.add(u"a folder beside Contents"_s,
               [](ItemMaker &item) { item.file(u"Resources/a.txt"_s, "text"); },
               {u"unsealed-root Resources"_s});
    corpus.add(u"a text at the top of a framework"_s,
               [](ItemMaker &item) {
                   item.bundle(u"Contents/Frameworks/Bar.framework"_s, codefiles::library(u"arm64"_s));
                   item.file(u"Contents/Frameworks/Bar.framework/a.txt"_s, "text");
               },
               {u"unsealed-root Contents/Frameworks/Bar.framework/a.txt"_s});
    corpus.add(u"no identifier"_s, [](ItemMaker &item) { item.info(u"Contents"_s, u"Foo"_s, {}); }, {},
               {u"missing-identifier ."_s});
    corpus.add(u"entitlements that cannot be read"_s,
               [](ItemMaker &item) { item.choices.entitlementsError = u"The file is damaged."_s; },
               {u"invalid-entitlements ."_s});
}

void addLinksAndNames(Corpus &corpus)
{
    const auto linked = [&corpus](const QString &name, const QString &target, const QString &ruleName) {
        corpus.add(name, [target](ItemMaker &item) { item.link(u"Contents/Resources/link"_s, target); },
                   {ruleName + u" Contents/Resources/link"_s});
    };
    linked(u"a link to nothing"_s, u"nowhere"_s, u"broken-link"_s);
    linked(u"a link to nothing in another folder"_s, u"../Frameworks/libgone.dylib"_s, u"broken-link"_s);
    linked(u"a link out of the item"_s, u"../../../outside"_s, u"link-leaves-item"_s);
    linked(u"a link out and in again"_s, u"../../../Foo.app2/Contents"_s, u"link-leaves-item"_s);
    linked(u"a link to a library of the machine"_s, u"/usr/lib/libz.dylib"_s, u"link-leaves-item"_s);
    linked(u"a link to a home folder"_s, u"/Users/me/build/libx"_s, u"link-leaves-item"_s);
    linked(u"a link that only seems to lead into System"_s, u"/System/../tmp/x"_s, u"link-leaves-item"_s);
    corpus.add(u"a path that is too long"_s,
               [](ItemMaker &item) {
                   QString name = u"Contents/Resources"_s;
                   for (int i = 0; i < 6; ++i)
                       name += u'/' + QString(180, QChar(u'a' + i));
                   item.file(name, "text");
               },
               {u"path-too-long Contents/Resources/%1/%2/%3/%4/%5/%6"_s.arg(
                   QString(180, u'a'), QString(180, u'b'), QString(180, u'c'), QString(180, u'd'),
                   QString(180, u'e'), QString(180, u'f'))});
    corpus.add(u"names that differ in case"_s,
               [](ItemMaker &item) {
                   item.file(u"Contents/Resources/Readme"_s, "text");
                   item.file(u"Contents/Resources/readme"_s, "text");
               },
               {}, {u"name-collision Contents/Resources/readme"_s});
    corpus.add(u"names that differ in how an accent is written"_s,
               [](ItemMaker &item) {
                   item.file(QString::fromUtf8("Contents/Resources/e\xcc\x81"), "text");
                   item.file(QString::fromUtf8("Contents/Resources/\xc3\xa9"), "text");
               },
               {QString::fromUtf8("path-too-long Contents/Resources/\xc3\xa9")},
               {QString::fromUtf8("name-collision Contents/Resources/\xc3\xa9")});
    corpus.add(u"names that differ in case in an image"_s,
               [](ItemMaker &item) {
                   item.file(u"Contents/Resources/Readme"_s, "text");
                   item.file(u"Contents/Resources/readme"_s, "text");
                   item.choices.packing = examine::Packing::diskImage;
               },
               {u"path-too-long Contents/Resources/readme"_s},
               {u"name-collision Contents/Resources/readme"_s});
    corpus.add(u"a name with a control character"_s,
               [](ItemMaker &item) { item.file(u"Contents/Resources/a\x01z"_s, "text"); },
               {u"path-too-long Contents/Resources/a\x01z"_s});
    corpus.add(u"an entitlement of a kind that signatures have not"_s,
               [](ItemMaker &item) {
                   item.choices.entitlements.insert(u"com.example.since"_s,
                                                    QDateTime(QDate(2026, 1, 1), QTime(), Qt::UTC));
               },
               {u"invalid-entitlements ."_s});
    corpus.add(u"code that is not executable and is signed with its app"_s, [](ItemMaker &item) {
        item.file(u"Contents/Helpers/tool"_s, codefiles::executable(u"arm64"_s));
        item.choices.signsDeep = true;
    });
    corpus.add(u"a setting in MacOS that is signed with its app"_s, [](ItemMaker &item) {
        item.file(u"Contents/MacOS/app.ini"_s, "a=b");
        item.choices.signsDeep = true;
    });
    corpus.add(u"code to skip that is signed with its app"_s, [](ItemMaker &item) {
        item.bundle(u"Contents/PlugIns/Bar.plugin"_s, codefiles::loadable(u"x86_64"_s));
        item.choices.skipPaths = {u"Contents/PlugIns"_s};
        item.choices.signsDeep = true;
    });
    corpus.add(u"an entitlement that needs a profile"_s,
               [](ItemMaker &item) {
                   item.choices.entitlements.insert(u"com.apple.developer.icloud-services"_s, true);
               },
               {}, {u"restricted-entitlement ."_s});
    corpus.add(u"an entitlement that has its profile"_s, [](ItemMaker &item) {
        item.choices.entitlements.insert(u"com.apple.developer.icloud-services"_s, true);
        item.file(u"Contents/embedded.provisionprofile"_s, "profile");
    });
}

} // namespace

const QList<CorpusItem> &corpus()
{
    static const QList<CorpusItem> all = [] {
        Corpus made;
        addHarmless(made);
        addHarmlessLookalikes(made);
        addUnsigned(made);
        addSkipped(made);
        addArchives(made);
        addBrokenCode(made);
        addBrokenBundles(made);
        addLinksAndNames(made);
        addPackages(made);
        addImages(made);
        return made.items;
    }();
    return all;
}
