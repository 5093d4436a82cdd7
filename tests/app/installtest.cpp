// What `cmake --install` leaves under a prefix, and that it works from there.

#include "app/program.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QMimeDatabase>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

/// An installation under a prefix with a blank in its name. Two at a time would share files of the build, so
/// one test asks for everything.
class InstalledTree : public Program {
protected:
    InstalledTree()
    {
        QProcess install;
        install.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        install.start(QString::fromUtf8(CMAKE),
                      {u"--install"_s, QString::fromUtf8(BUILD), u"--prefix"_s, prefix});
        install.waitForFinished(-1);
        EXPECT_EQ(install.exitCode(), 0) << install.readAllStandardOutput().constData();
    }

    void expectWhatADesktopLooksFor();
    static void expectThatItIsOfferedForWhatItTakes(const QStringList &types);
    void expectThatSoftwareCentresCanReadWhatItIs();
    void expectThatTheBusStartsItWithItsToolchain();

    QString serviceFile() const
    {
        return prefix + u"/share/dbus-1/services/org.sealwright.Sealwright.service"_s;
    }
    static QString value(const QString &file, const QString &key)
    {
        QFile opened(file);
        EXPECT_TRUE(opened.open(QIODevice::ReadOnly)) << file.toStdString();
        for (const QByteArray &line : opened.readAll().split('\n')) {
            if (const QString text = QString::fromUtf8(line); text.startsWith(key + u'='))
                return text.sliced(key.size() + 1);
        }
        return {};
    }

    const QString prefix = folder("a prefix");
};

void InstalledTree::expectWhatADesktopLooksFor()
{
    EXPECT_EQ(value(serviceFile(), u"Name"_s), bus::service);
    EXPECT_EQ(value(serviceFile(), u"Exec"_s), u"\"%1/bin/sealwright\""_s.arg(prefix));
    const QString desktopFile = prefix + u"/share/applications/org.sealwright.Sealwright.desktop"_s;
    EXPECT_EQ(value(desktopFile, u"DBusActivatable"_s), u"true"_s);
    expectThatItIsOfferedForWhatItTakes(value(desktopFile, u"MimeType"_s).split(u';', Qt::SkipEmptyParts));
    const QString icon = value(desktopFile, u"Icon"_s);
    for (const QString &place : {u"scalable/apps/%1.svg"_s, u"48x48/apps/%1.png"_s, u"256x256/apps/%1.png"_s})
        EXPECT_TRUE(QFile::exists(prefix + u"/share/icons/hicolor/"_s + place.arg(icon)))
            << place.toStdString();
    for (const QString &file :
         {u"share/man/man1/sealwrightctl.1"_s, u"share/zsh/site-functions/_sealwrightctl"_s,
          u"share/bash-completion/completions/sealwrightctl"_s})
        EXPECT_TRUE(QFile::exists(prefix + u'/' + file)) << file.toStdString();
    EXPECT_EQ(value(prefix + u"/lib/systemd/user/sealwright.service"_s, u"ExecStart"_s),
              u"\"%1/bin/sealwright\""_s.arg(prefix));
    expectThatSoftwareCentresCanReadWhatItIs();
    QProcess ctl;
    start(ctl, prefix + u"/bin/sealwrightctl"_s);
    EXPECT_EQ(end(ctl), 2) << "it has been told nothing to do";
}

void InstalledTree::expectThatItIsOfferedForWhatItTakes(const QStringList &types)
{
    const QMimeDatabase database;
    for (const QString &name : {u"Foo.dmg"_s, u"Foo.pkg"_s}) {
        const QMimeType type = database.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
        EXPECT_TRUE(types.contains(type.name())) << name.toStdString() << " is " << type.name().toStdString();
    }
    EXPECT_FALSE(types.contains(u"inode/directory"_s)) << "it might become what opens all folders";
}

void InstalledTree::expectThatSoftwareCentresCanReadWhatItIs()
{
    QFile file(prefix + u"/share/metainfo/org.sealwright.Sealwright.metainfo.xml"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QHash<QString, QString> texts;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement
            && (xml.name() == "id"_L1 || xml.name() == "launchable"_L1 || xml.name() == "dbus"_L1))
            texts.insert(xml.name().toString(), xml.readElementText());
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(texts.value(u"id"_s), bus::service);
    EXPECT_EQ(texts.value(u"dbus"_s), bus::service);
    EXPECT_TRUE(QFile::exists(prefix + u"/share/applications/"_s + texts.value(u"launchable"_s)));
}

void InstalledTree::expectThatTheBusStartsItWithItsToolchain()
{
    environment.insert(u"SEALWRIGHT_TOOLCHAIN_STATE"_s, folder("TOOLCHAIN"));
    QString variables;
    for (const QString &name : {u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"SEALWRIGHT_TOOLCHAIN_STATE"_s})
        variables += u"%1='%2' "_s.arg(name, environment.value(name));
    // The line is the installed file's own, but for the folders of this test.
    privatebus::setActivation(u"/usr/bin/env %1 %2"_s.arg(variables, value(serviceFile(), u"Exec"_s)));
    waitUntilReady(); // without a toolchain beside it there is no notary tool on this host
    EXPECT_EQ(documents().size(), 1);
    quit();
    host.runUntil([this] { return !client.connection().interface()->isServiceRegistered(bus::service); });
}

} // namespace

TEST_F(InstalledTree, isKnownToTheDesktopAndStartedByTheBus)
{
    expectWhatADesktopLooksFor();
    expectThatTheBusStartsItWithItsToolchain();
}
