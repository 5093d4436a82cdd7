// What tells people about the client says what the client does.

#include "ctl/commandline.h"
#include "scripting/scripterrors.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// By its path in the project.
QString textOf(const QString &path)
{
    QFile file(QStringLiteral(SOURCE "/") + path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QString resource(const QString &name)
{
    return textOf(u"resources/"_s + name);
}

/// Whether a source of the application has the text as a literal, the table of the errors' numbers excepted.
bool isRaised(const QString &title)
{
    QDirIterator sources(QStringLiteral(SOURCE "/src"), {u"*.cpp"_s}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        if (source.open(QIODevice::ReadOnly) && source.readAll().contains("u\"" + title.toUtf8() + "\"_s"))
            return true;
    }
    return false;
}

QStringList optionNames()
{
    static const QRegularExpression option(u"--[a-z-]+"_s);
    QStringList names;
    auto matches = option.globalMatch(helpText());
    while (matches.hasNext())
        names.append(matches.next().captured());
    names.removeDuplicates();
    return names;
}

/// What the completion of bash offers behind these words, of which the last is being typed.
QStringList completions(const QStringList &words)
{
    QProcess bash;
    bash.start(u"bash"_s,
               QStringList{u"-c"_s,
                           u"source \"$0\"; COMP_WORDS=(sealwrightctl \"$@\"); COMP_CWORD=$#; "
                           "_sealwrightctl; printf '%s\\n' \"${COMPREPLY[@]}\""_s,
                           QStringLiteral(SOURCE "/resources/completions/sealwrightctl.bash")}
                   + words);
    bash.waitForFinished();
    return QString::fromUtf8(bash.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

TEST(ManualPage, namesEveryCommandAndOption)
{
    const QString page = resource(u"man/sealwrightctl.1"_s).remove(u'\\');
    for (const QString &command : commandNames())
        EXPECT_TRUE(page.contains(u"sealwrightctl "_s + command)) << command.toStdString();
    for (const QString &option : optionNames())
        EXPECT_TRUE(page.contains(option)) << option.toStdString();
}

TEST(BashCompletion, offersEveryCommand)
{
    EXPECT_EQ(completions({QString()}), commandNames() + (QStringList{u"--help"_s, u"--version"_s}));
    EXPECT_EQ(completions({u"cl"_s}), (QStringList{u"clear-log"_s, u"close"_s}));
}

TEST(BashCompletion, offersOnlyOptionsThatTheCommandTakes)
{
    for (const QString &command : commandNames()) {
        for (const QString &option : completions({command, u"--"_s})) {
            const Request request = parseCommandLine({command, option, u"1"_s, u"a"_s, u"b"_s});
            EXPECT_FALSE(request.problem.contains(u"option"_s))
                << command.toStdString() << ' ' << option.toStdString() << ": "
                << request.problem.toStdString();
        }
    }
    EXPECT_TRUE(completions({u"submit"_s, u"--sk"_s}).contains(u"--skip-stapling"_s));
}

TEST(BashCompletion, offersEveryOptionSomewhere)
{
    QStringList offered = completions({u"--"_s});
    for (const QString &command : commandNames())
        offered += completions({command, u"--"_s});
    for (const QString &option : optionNames())
        EXPECT_TRUE(offered.contains(option)) << option.toStdString();
}

TEST(ZshCompletion, namesEveryCommandAndOption)
{
    const QString script = resource(u"completions/_sealwrightctl"_s);
    for (const QString &command : commandNames())
        EXPECT_TRUE(script.contains(u"'"_s + command + u':')) << command.toStdString();
    for (const QString &option : optionNames())
        EXPECT_TRUE(script.contains(option + u'[')) << option.toStdString();
}

TEST(FirstSubmission, comesBehindWhatItNeeds)
{
    static const QRegularExpression submission(u"sealwrightctl submit [^\n]*[.]app"_s);
    for (const QString &path : {u"README.md"_s, u"docs/scripting.md"_s, u"resources/man/sealwrightctl.1"_s}) {
        const QString text = textOf(path).remove(u'\\');
        const qsizetype first = text.indexOf(submission);
        EXPECT_GT(first, 0) << path.toStdString();
        const QString before = text.left(first);
        EXPECT_TRUE(before.contains(u"sealwright-keychain"_s)) << path.toStdString();
        for (const QString &property : {u"AppleID"_s, u"AppPassword"_s}) {
            EXPECT_TRUE(before.contains(u"set "_s + property) || before.contains(property + u'='))
                << path.toStdString() << ": " << property.toStdString();
        }
    }
}

TEST(ResultInTheDocuments, isAWholePath)
{
    static const QRegularExpression result(u"path of the result,\\s+`([^`]+)`"_s);
    const auto found = result.match(textOf(u"docs/scripting.md"_s));
    ASSERT_TRUE(found.hasMatch());
    EXPECT_TRUE(found.captured(1).startsWith(u'/')) << found.captured(1).toStdString();
}

TEST(ErrorInTheDocuments, isOneThatIsRaisedUnderThatNumber)
{
    static const QRegularExpression error(u"sealwrightctl: error (\\d+): ([A-Za-z ]+):"_s);
    auto errors = error.globalMatch(textOf(u"docs/scripting.md"_s));
    ASSERT_TRUE(errors.hasNext());
    while (errors.hasNext()) {
        const auto found = errors.next();
        const QString title = found.captured(2);
        EXPECT_EQ(errorNumberFromString(title), found.captured(1).toLongLong()) << title.toStdString();
        EXPECT_TRUE(isRaised(title)) << title.toStdString();
    }
}
