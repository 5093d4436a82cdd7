#include "platform/qt/settingspreferences.h"
#include "eventwait.h"
#include "temporaryfolder.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

struct TextRow {
    const char *name;
    QString text;
};

class Texts : public testing::TestWithParam<TextRow> { };

class SettingsFile : public testing::Test {
protected:
    /// The file as a person may have written it.
    SettingsPreferences typed(const QByteArray &contents)
    {
        return SettingsPreferences(folder.file(u"Sealwright.conf"_s, contents));
    }

    TemporaryFolder folder;
    const QString path = folder.path(u"Sealwright/Sealwright.conf"_s);
};

} // namespace

TEST_P(Texts, comeBackAtTheNextLaunchAsTheyWere)
{
    const TemporaryFolder folder;
    const QString path = folder.path(u"conf"_s);
    SettingsPreferences(path).setValue(u"key"_s, GetParam().text);
    const SettingsPreferences next(path);
    EXPECT_EQ(next.string(u"key"_s).toStdString(), GetParam().text.toStdString());
    EXPECT_FALSE(next.string(u"key"_s).isNull());
}

INSTANTIATE_TEST_SUITE_P(
    SettingsPreferences, Texts,
    testing::Values(TextRow{"plain", u"someone@example.com"_s}, TextRow{"commas", u"a,b, c ,d"_s},
                    TextRow{"quotes", u"say \"it's\" \"\""_s},
                    TextRow{"leadingAt", u"@keychain:AC_PASSWORD"_s},
                    TextRow{"likeAnEncodedValue", u"@Variant(x)"_s}, TextRow{"twoAts", u"@@x"_s},
                    TextRow{"unicode", u"Größe ‘日本’ 🎉"_s}, TextRow{"newlines", u"one\ntwo\r\n\ttab"_s},
                    TextRow{"backslashes", u"C:\\x\\n \\"_s}, TextRow{"semicolonsAndHashes", u"; # [a]=b"_s},
                    TextRow{"blanksAround", u"  two  "_s}, TextRow{"percent", u"100%20"_s},
                    TextRow{"empty", u""_s},
                    TextRow{"identity", u"Developer ID Application: Foo, Inc. (ABCDE12345)"_s}),
    [](const auto &row) { return row.param.name; });

TEST_F(SettingsFile, numbersAndBooleansComeBackAtTheNextLaunch)
{
    {
        SettingsPreferences preferences(path);
        preferences.setValue(u"on"_s, true);
        preferences.setValue(u"off"_s, false);
        preferences.setValue(u"whole"_s, qint64(9007199254740993));
        preferences.setValue(u"delay"_s, 30.25);
        preferences.setValue(u"single"_s, 45.5F);
    }
    const SettingsPreferences next(path);
    EXPECT_TRUE(next.boolean(u"on"_s));
    EXPECT_FALSE(next.boolean(u"off"_s));
    EXPECT_EQ(next.integer(u"whole"_s), 9007199254740993);
    EXPECT_EQ(next.number(u"delay"_s), 30.25);
    EXPECT_EQ(next.number(u"single"_s), 45.5);
}

TEST_F(SettingsFile, theFileIsOneFlatGroupThatAPersonCanRead)
{
    {
        SettingsPreferences preferences(path);
        preferences.setValue(u"pollingDelay"_s, 45.5F);
        preferences.setValue(u"allowFrameworks"_s, false);
        preferences.setValue(u"appleIDValue"_s, u"someone@example.com"_s);
    }
    EXPECT_EQ(contentsOf(path),
              "[General]\nallowFrameworks=false\nappleIDValue=someone@example.com\npollingDelay=45.5\n");
}

TEST_F(SettingsFile, whatAPersonTypedIsRead)
{
    const SettingsPreferences preferences =
        typed("[General]\nallowFrameworks = YES\npollingDelay=42\nappPassValue=@keychain:AC\n"
              "lastUsedIdentity=Developer ID Application: Foo, Inc. (ABCDE12345)\n\n[Other]\nhidden=1\n");
    EXPECT_TRUE(preferences.boolean(u"allowFrameworks"_s));
    EXPECT_EQ(preferences.number(u"pollingDelay"_s), 42);
    EXPECT_EQ(preferences.string(u"appPassValue"_s), u"@keychain:AC"_s);
    EXPECT_EQ(preferences.string(u"lastUsedIdentity"_s),
              u"Developer ID Application: Foo, Inc. (ABCDE12345)"_s);
    EXPECT_FALSE(preferences.value(u"hidden"_s).isValid());
}

TEST_F(SettingsFile, aMissingFileHasNoValuesAndRegisteredOnesAreNotStored)
{
    {
        SettingsPreferences preferences(path);
        preferences.registerDefaults({{u"pollingDelay"_s, 30.0}});
        EXPECT_EQ(preferences.number(u"pollingDelay"_s), 30);
        EXPECT_TRUE(preferences.string(u"appleIDValue"_s).isNull());
    }
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(SettingsFile, aRemovedKeyFallsBackToItsRegisteredValue)
{
    {
        SettingsPreferences preferences(path);
        preferences.registerDefaults({{u"pollingDelay"_s, 30.0}});
        preferences.setValue(u"pollingDelay"_s, 60);
        preferences.setValue(u"kept"_s, 1);
        EXPECT_EQ(preferences.number(u"pollingDelay"_s), 60);
        preferences.remove(u"pollingDelay"_s);
        EXPECT_EQ(preferences.number(u"pollingDelay"_s), 30);
    }
    EXPECT_EQ(contentsOf(path), "[General]\nkept=1\n");
}

TEST_F(SettingsFile, whatIsSetIsOnDiskOnceTheEventLoopRuns)
{
    SettingsPreferences preferences(path);
    std::thread([&] { preferences.setValue(u"key"_s, u"from a worker"_s); }).join();
    ASSERT_TRUE(waitFor([&] { return QFile::exists(path); }));
    EXPECT_EQ(contentsOf(path), "[General]\nkey=from a worker\n");
}

TEST_F(SettingsFile, whatIsSavedIsOnDiskAtOnce)
{
    SettingsPreferences preferences(path);
    preferences.setValue(u"key"_s, u"text"_s);
    preferences.setValue(u"other"_s, 1);
    preferences.save();
    EXPECT_EQ(contentsOf(path), "[General]\nkey=text\nother=1\n");
    preferences.remove(u"other"_s);
    preferences.save();
    EXPECT_EQ(contentsOf(path), "[General]\nkey=text\n");
}

TEST_F(SettingsFile, anEditFromOutsideIsSeenAtTheNextLaunchOnlyAndIsKept)
{
    SettingsPreferences preferences = typed("[General]\nkey=first\n");
    const QString file = folder.file(u"Sealwright.conf"_s, "[General]\nkey=second, longer\nmore=1\n");
    preferences.setValue(u"own"_s, 1);
    ASSERT_TRUE(waitFor([&] { return contentsOf(file).contains("own=1"); }));
    EXPECT_EQ(preferences.string(u"key"_s), u"first"_s);
    EXPECT_FALSE(preferences.value(u"more"_s).isValid());
    const SettingsPreferences next(file);
    EXPECT_EQ(next.string(u"key"_s), u"second, longer"_s);
    EXPECT_EQ(next.integer(u"more"_s), 1);
    EXPECT_EQ(next.integer(u"own"_s), 1);
}

TEST_F(SettingsFile, manyThreadsMayReadAndWriteWhileTheFileIsWritten)
{
    {
        SettingsPreferences preferences(path);
        std::atomic<int> running = 4;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < 200; ++i) {
                    preferences.setValue(QString::number(t), i);
                    EXPECT_EQ(preferences.integer(QString::number(t)), i);
                    static_cast<void>(preferences.integer(QString::number((t + 1) % 4)));
                }
                --running;
            });
        }
        EXPECT_TRUE(waitFor([&] { return running == 0; }));
        for (std::thread &thread : threads)
            thread.join();
    }
    const SettingsPreferences next(path);
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(next.integer(QString::number(t)), 199);
}

TEST_F(SettingsFile, tellsOfEachWriteOnceTheValueIsThere)
{
    SettingsPreferences preferences(path);
    const QObject context;
    QStringList seen;
    QObject::connect(&preferences.changes, &Observable::changed, &context,
                     [&] { seen.append(preferences.string(u"key"_s)); });
    preferences.setValue(u"key"_s, u"one"_s);
    preferences.remove(u"key"_s);
    EXPECT_EQ(seen, (QStringList{u"one"_s, QString()}));
}
