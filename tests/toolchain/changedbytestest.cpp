// What has gone the whole road, and then has one byte changed.

#include "toolchain/bundlebuilder.h"
#include "toolchain/coveredbytes.h"
#include "toolchain/diskimagefixture.h"
#include "toolchain/xarbuilder.h"

#include <QFileInfo>

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;

namespace {

struct Command {
    QString tool;
    QStringList arguments;
};

/// One byte of one of an item's files.
struct Place {
    QString file;
    qint64 offset = 0;
};

/// A thousand of each kind take minutes; SEALWRIGHT_CHANGES asks for another number.
int changesWanted()
{
    constexpr int usual = 12;
    const int wanted = qEnvironmentVariableIntValue("SEALWRIGHT_CHANGES");
    return wanted > 0 ? wanted : usual;
}

/// The bytes that a change of is to be noticed.
class CoveredPlaces {
public:
    explicit CoveredPlaces(const QString &item)
        : m_files(QFileInfo(item).isDir() ? coveredbytes::filesBelow(item) : QStringList{item})
    {
        // The rules of the seal leave them out.
        m_files.removeIf([](const QString &file) {
            return file.endsWith(u"/.DS_Store"_s) || file.endsWith(u"/PkgInfo"_s);
        });
        for (const QString &file : m_files) {
            m_holes.append(coveredbytes::uncovered(file));
            m_total += QFileInfo(file).size();
        }
    }

    [[nodiscard]] Place any(std::mt19937_64 &random) const
    {
        while (true) {
            auto offset = qint64(random() % quint64(m_total));
            qsizetype file = 0;
            while (offset >= QFileInfo(m_files[file]).size())
                offset -= QFileInfo(m_files[file++]).size();
            if (coveredbytes::isCovered(m_holes[file], quint64(offset)))
                return {m_files[file], offset};
        }
    }

private:
    QStringList m_files;
    QList<QList<toolchain::codesignature::ByteRange>> m_holes; ///< of each file
    qint64 m_total = 0;
};

char exchangeByte(const Place &place, char byte)
{
    QFile file(place.file);
    char before = 0;
    EXPECT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) && file.seek(place.offset)
                && file.getChar(&before) && file.seek(place.offset) && file.putChar(byte))
        << place.file.toStdString();
    return before;
}

class ChangedBytes : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        makeIdentity();
        storePassword();
    }

    [[nodiscard]] QString makeBundle(const QString &name) const
    {
        bundlebuilder::makeApp(path(name), u"com.example.item"_s);
        expectSuccess({codesign,
                       {u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s,
                        u"--digest-algorithm=sha1,sha256"_s, u"-s"_s, identity, path(name)}});
        return path(name);
    }

    void expectSuccess(const Command &command) const
    {
        const ToolResult result = run(command.tool, command.arguments);
        EXPECT_EQ(result.status, 0) << command.tool.toStdString() << ": " << result.error.toStdString();
    }

    /// Has the notary look at one file, and attaches the ticket to an item.
    void release(const QString &upload, const QString &item) const
    {
        const QString report = pollToTheEnd(uuidIn(this->upload(upload))).output;
        ASSERT_TRUE(report.contains(u"Status: success"_s)) << report.toStdString();
        expectSuccess({xcrun, {u"stapler"_s, u"staple"_s, item}});
    }

    [[nodiscard]] bool isRefused(const QList<Command> &commands) const
    {
        return std::any_of(commands.begin(), commands.end(), [this](const Command &command) {
            return run(command.tool, command.arguments).status != 0;
        });
    }

    void expectEveryChangeRefused(const QString &item, QList<Command> commands) const
    {
        commands.append({xcrun, {u"stapler"_s, u"validate"_s, item}});
        for (const Command &command : commands)
            expectSuccess(command);
        const CoveredPlaces places(item);
        std::mt19937_64 random(20261122);
        for (int change = 0; change < changesWanted(); ++change) {
            const Place place = places.any(random);
            const char before = exchangeByte(place, 0);
            const char after = char(uchar(before) + 1 + random() % 255);
            exchangeByte(place, after);
            EXPECT_TRUE(isRefused(commands)) << place.file.toStdString() << " at " << place.offset << ": "
                                             << int(uchar(before)) << " became " << int(uchar(after));
            exchangeByte(place, before);
        }
        EXPECT_FALSE(isRefused(commands));
    }

    void expectEveryChangeOfCodeRefused(const QString &item) const
    {
        expectEveryChangeRefused(item, {{codesign, {u"--verify"_s, item}}, {spctl, {u"--assess"_s, item}}});
    }
};

} // namespace

TEST_F(ChangedBytes, ofAStapledAppAreRefused)
{
    const QString app = makeBundle(u"App.app"_s);
    ASSERT_EQ(pack(app, path(u"App.zip"_s)).status, 0);
    ASSERT_NO_FATAL_FAILURE(release(path(u"App.zip"_s), app));
    expectEveryChangeOfCodeRefused(app);
}

TEST_F(ChangedBytes, ofAStapledPlugInAreRefused)
{
    const QString plugIn = makeBundle(u"PlugIn.plugin"_s);
    ASSERT_EQ(pack(plugIn, path(u"PlugIn.zip"_s)).status, 0);
    ASSERT_NO_FATAL_FAILURE(release(path(u"PlugIn.zip"_s), plugIn));
    expectEveryChangeOfCodeRefused(plugIn);
}

TEST_F(ChangedBytes, ofAnAppThatWentInAnImageAreRefused)
{
    const QString app = makeBundle(u"App.app"_s);
    ASSERT_NO_FATAL_FAILURE(release(imageOf(app), app));
    expectEveryChangeOfCodeRefused(app);
}

TEST_F(ChangedBytes, ofAStapledImageAreRefused)
{
    const QString image = imageOf(makeBundle(u"App.app"_s));
    expectSuccess(
        {codesign, {u"--timestamp"_s, u"--digest-algorithm=sha1,sha256"_s, u"-s"_s, identity, image}});
    ASSERT_NO_FATAL_FAILURE(release(image, image));
    expectEveryChangeRefused(
        image,
        {{codesign, {u"--verify"_s, image}},
         {spctl,
          {u"--assess"_s, u"--type"_s, u"open"_s, u"--context"_s, u"context:primary-signature"_s, image}}});
}

TEST_F(ChangedBytes, ofAStapledPackageAreRefused)
{
    const QString plain = path(u"Plain.pkg"_s);
    const QString package = path(u"App.pkg"_s);
    expectSuccess({keychain, {u"make-identity"_s, u"--kind"_s, u"installer"_s, u"--name"_s, holder}});
    xarbuilder::writeArchive(
        plain, {{u"PackageInfo"_s, "<pkg-info/>"}, {u"Payload"_s, QByteArray("payload ").repeated(500)}});
    expectSuccess({u"/usr/bin/productsign"_s, {u"--sign"_s, holder, plain, package}});
    ASSERT_NO_FATAL_FAILURE(release(package, package));
    expectEveryChangeRefused(package, {{spctl, {u"--assess"_s, u"--type"_s, u"install"_s, package}}});
}
