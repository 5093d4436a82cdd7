// Packages and disk images, as items and within one, with code that is signed rightly, wrongly or not at all.

#include "examine/codefiles.h"
#include "examine/corpusmaking.h"
#include "examine/signingplace.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

using Packed = ItemMaker::Packed;
using Files = QList<Packed>;

const QStringList hardened{u"-o"_s, u"runtime"_s};

void expectSigned(const QString &problem)
{
    EXPECT_TRUE(problem.isNull()) << problem.toStdString();
}

/// Signs the app as it must be before it is packed.
void signRightly(const ItemMaker &item)
{
    expectSigned(SigningPlace::sign(item.item(), hardened));
}

void signForDebugging(const ItemMaker &item)
{
    const QString entitlements = item.folder() + u"/Debugging.plist"_s;
    QFile file(entitlements);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "<plist version=\"1.0\"><dict><key>com.apple.security.get-task-allow</key><true/></dict></plist>");
    file.close();
    expectSigned(SigningPlace::sign(item.item(), hardened + QStringList{u"--entitlements"_s, entitlements}));
}

/// Ways to sign the app that is to be packed, and the rule that each of them breaks.
struct Signing {
    QString name;
    void (*sign)(const ItemMaker &item);
    QString brokenRule; ///< empty: none
};

const QList<Signing> &signings()
{
    static const QList<Signing> all{
        {u"a signed app"_s, &signRightly, {}},
        {u"an app that nobody signed"_s, [](const ItemMaker &) {}, u"unsigned-code"_s},
        {u"an app without the hardened runtime"_s,
         [](const ItemMaker &item) { expectSigned(SigningPlace::sign(item.item(), {})); },
         u"no-hardened-runtime"_s},
        {u"an app without a time stamp"_s,
         [](const ItemMaker &item) { expectSigned(SigningPlace::signUnstamped(item.item(), hardened)); },
         u"no-timestamp"_s},
        {u"an app for debugging"_s, &signForDebugging, u"get-task-allow"_s},
        {u"an app that was changed after it was signed"_s,
         [](const ItemMaker &item) {
             signRightly(item);
             item.file(u"Contents/Resources/en.lproj/InfoPlist.strings"_s, "/* something */");
         },
         u"signature-invalid"_s},
    };
    return all;
}

void becomePackage(ItemMaker &item, const Files &files)
{
    item.become(u"Foo.pkg"_s, item.packageBytes(files));
}

void becomeImage(ItemMaker &item, const Files &files)
{
    item.become(u"Foo.dmg"_s, item.imageBytes(files));
}

Files tool(const QString &architecture)
{
    return {{u"usr/local/bin/tool"_s, codefiles::executable(architecture)}};
}

/// The rule at the place, unless it is none.
QStringList broken(const QString &rule, const QString &place)
{
    return rule.isEmpty() ? QStringList() : QStringList{rule + u' ' + place};
}

void addDamagedPackages(Corpus &corpus)
{
    corpus.add(u"a package that is a text"_s, [](ItemMaker &item) { item.become(u"Foo.pkg"_s, "text"); },
               {u"damaged-code ."_s});
    corpus.add(u"a package of no bytes"_s, [](ItemMaker &item) { item.become(u"Foo.pkg"_s, {}); },
               {u"damaged-code ."_s});
    corpus.add(u"a package that is cut"_s,
               [](ItemMaker &item) {
                   const QByteArray whole = item.packageBytes({{u"a.txt"_s, QByteArray(9000, 'a')}});
                   item.become(u"Foo.pkg"_s, whole.first(whole.size() - 40));
               },
               {u"damaged-code ."_s});
    corpus.add(u"a package whose payload is cut"_s,
               [](ItemMaker &item) {
                   const QByteArray payload = item.archiveBytes(u"cpio.gz"_s, tool(u"arm64"_s));
                   item.become(u"Foo.pkg"_s,
                               item.archiveBytes(u"xar"_s,
                                                 {{u"PackageInfo"_s, "<pkg-info/>"},
                                                  {u"Payload"_s, payload.first(payload.size() / 2)}}));
               },
               {u"damaged-code ."_s});
}

/// What an app can have in it that has contents of its own.
struct Container {
    QString called;
    QString file;
    decltype(&ItemMaker::packageBytes) bytes;
    QString contents; ///< where they stand in it, as a path tells it
};

void addWithin(Corpus &corpus, const Container &packed)
{
    const QString name = u"Contents/Resources/"_s + packed.file;
    corpus.forEach(packed.called + u" with unsigned code in an app"_s,
                   [=](ItemMaker &item, const QString &architecture) {
                       item.file(name, (item.*packed.bytes)(tool(architecture)));
                   },
                   {u"code-in-archive "_s + name + packed.contents + u"/usr/local/bin/tool"_s});
    corpus.add(packed.called + u" of texts in an app"_s, [=](ItemMaker &item) {
        item.file(name, (item.*packed.bytes)({{u"a.txt"_s, "text"}}));
    });
    corpus.add(packed.called + u" with a signed app in an app"_s, [=](ItemMaker &item) {
        const ItemMaker inner;
        signRightly(inner);
        item.file(name, (item.*packed.bytes)(inner.contents()));
    });
    const QString zip = u"Contents/Resources/a.zip"_s;
    corpus.add(u"an unsigned app in "_s + packed.called + u" in a zip archive in an app"_s,
               [=](ItemMaker &item) {
                   const ItemMaker inner;
                   item.archive(zip, {{packed.file, (item.*packed.bytes)(inner.contents())}});
               },
               {u"code-in-archive "_s + zip + u'/' + packed.file + packed.contents + u"/Foo.app"_s});
}

void addDamagedImages(Corpus &corpus)
{
    corpus.add(u"an image that is a text"_s, [](ItemMaker &item) { item.become(u"Foo.dmg"_s, "text"); },
               {u"damaged-code ."_s});
    corpus.add(u"an image of no bytes"_s, [](ItemMaker &item) { item.become(u"Foo.dmg"_s, {}); },
               {u"damaged-code ."_s});
    corpus.add(u"an image that is cut"_s,
               [](ItemMaker &item) {
                   const QByteArray whole = item.imageBytes({{u"a.txt"_s, "text"}});
                   item.become(u"Foo.dmg"_s, whole.first(whole.size() / 2));
               },
               {u"damaged-code ."_s});
    corpus.add(u"an image whose blocks are overwritten"_s,
               [](ItemMaker &item) {
                   QByteArray bytes = item.imageBytes({{u"a.txt"_s, "text"}});
                   bytes.replace(0, bytes.size() / 2, QByteArray(bytes.size() / 2, 'x'));
                   item.become(u"Foo.dmg"_s, bytes);
               },
               {u"damaged-code ."_s});
}

QByteArray signedPackage(const ItemMaker &item)
{
    const ItemMaker before;
    const QString place = before.folder() + u"/Unsigned.pkg"_s;
    QFile file(place);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(item.packageBytes({{u"a.txt"_s, "text"}}));
    file.close();
    expectSigned(SigningPlace::signPackage(place, before.folder() + u"/Signed.pkg"_s));
    QFile signedFile(before.folder() + u"/Signed.pkg"_s);
    EXPECT_TRUE(signedFile.open(QIODevice::ReadOnly));
    return signedFile.readAll();
}

} // namespace

void addPackages(Corpus &corpus)
{
    for (const Signing &signing : signings()) {
        corpus.add(
            u"a package with "_s + signing.name,
            [sign = signing.sign](ItemMaker &item) {
                sign(item);
                becomePackage(item, item.contents());
            },
            broken(signing.brokenRule, u"Payload/Foo.app"_s));
    }
    corpus.forEach(
        u"a package with an unsigned tool"_s,
        [](ItemMaker &item, const QString &architecture) { becomePackage(item, tool(architecture)); },
        {u"unsigned-code Payload/usr/local/bin/tool"_s});
    corpus.add(u"a package of texts"_s, [](ItemMaker &item) {
        becomePackage(item, {{u"a.txt"_s, "text"}, {u"b.sh"_s, "#!/bin/sh\n"}});
    });
    corpus.add(u"a package that links to a place on the disk"_s, [](ItemMaker &item) {
        becomePackage(item, {{u"a.txt"_s, "text"}, {u"usr/local/bin/tool"_s, {}, u"/opt/foo/bin/tool"_s}});
    });
    corpus.add(u"a package that was signed before"_s,
               [](ItemMaker &item) { item.become(u"Foo.pkg"_s, signedPackage(item)); });
    corpus.add(u"an app with a signed package"_s,
               [](ItemMaker &item) { item.file(u"Contents/Resources/Inner.pkg"_s, signedPackage(item)); });
    corpus.add(u"an app with a package whose signature does not hold"_s,
               [](ItemMaker &item) {
                   QByteArray package = signedPackage(item);
                   package.back() = char(package.back() + 1);
                   item.file(u"Contents/Resources/Inner.pkg"_s, package);
               },
               {u"signature-invalid Contents/Resources/Inner.pkg"_s});
    corpus.add(u"a package that Apple has notarized"_s, [](ItemMaker &item) {
        QFile real(QString::fromUtf8(TEST_DATA)
                   + u"/package/Karabiner-DriverKit-VirtualHIDDevice-7.3.0.pkg"_s);
        EXPECT_TRUE(real.open(QIODevice::ReadOnly));
        item.become(u"Foo.pkg"_s, real.readAll());
    });
    corpus.add(
        u"a package with a zip archive of unsigned code"_s,
        [](ItemMaker &item) {
            becomePackage(item, {{u"opt/tools.zip"_s, item.archiveBytes(u"zip"_s, tool(u"x86_64"_s))}});
        },
        {u"code-in-archive Payload/opt/tools.zip/usr/local/bin/tool"_s});
    corpus.add(u"a package of packages with unsigned code"_s,
               [](ItemMaker &item) {
                   item.become(u"Foo.pkg"_s,
                               item.archiveBytes(u"xar"_s,
                                                 {{u"Distribution"_s, "<installer-gui-script/>"},
                                                  {u"Part.pkg/PackageInfo"_s, "<pkg-info/>"},
                                                  {u"Part.pkg/Payload"_s,
                                                   item.archiveBytes(u"cpio.gz"_s, tool(u"arm64"_s))}}));
               },
               {u"unsigned-code Part.pkg/Payload/usr/local/bin/tool"_s});
    corpus.add(u"a package whose scripts hold unsigned code"_s,
               [](ItemMaker &item) {
                   const Files scripts{{u"postinstall"_s, "#!/bin/sh\n"},
                                       {u"helper"_s, codefiles::executable(u"x86_64"_s)}};
                   item.become(u"Foo.pkg"_s,
                               item.archiveBytes(u"xar"_s,
                                                 {{u"PackageInfo"_s, "<pkg-info/>"},
                                                  {u"Scripts"_s, item.archiveBytes(u"cpio.gz"_s, scripts)}}));
               },
               {u"unsigned-code Scripts/helper"_s});
    addDamagedPackages(corpus);
    addWithin(corpus, {u"a package"_s, u"Inner.pkg"_s, &ItemMaker::packageBytes, u"/Payload"_s});
}

void addImages(Corpus &corpus)
{
    for (const Signing &signing : signings()) {
        corpus.add(
            u"an image with "_s + signing.name,
            [sign = signing.sign](ItemMaker &item) {
                sign(item);
                becomeImage(item, item.contents());
            },
            broken(signing.brokenRule, u"Foo.app"_s));
    }
    corpus.forEach(
        u"an image with an unsigned tool"_s,
        [](ItemMaker &item, const QString &architecture) { becomeImage(item, tool(architecture)); },
        {u"unsigned-code usr/local/bin/tool"_s});
    corpus.add(u"an image of texts"_s, [](ItemMaker &item) { becomeImage(item, {{u"a.txt"_s, "text"}}); });
    corpus.add(u"an image with the usual link to Applications"_s, [](ItemMaker &item) {
        signRightly(item);
        becomeImage(item,
                    item.contents()
                        + Files{{u"Applications"_s, {}, u"/Applications"_s},
                                {u".background/picture.png"_s, "png"},
                                {u".DS_Store"_s, "Bud1"}});
    });
    corpus.add(u"an image with a package of unsigned code"_s,
               [](ItemMaker &item) {
                   becomeImage(item, {{u"Install.pkg"_s, item.packageBytes(tool(u"arm64"_s))}});
               },
               {u"code-in-archive Install.pkg/Payload/usr/local/bin/tool"_s});
    addDamagedImages(corpus);
    addWithin(corpus, {u"an image"_s, u"Inner.dmg"_s, &ItemMaker::imageBytes, {}});
}
