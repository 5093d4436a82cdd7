// What tells people about the client says what the client does.

#include "ctl/commandline.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString resource(const QString &name)
{
    QFile file(QStringLiteral(SOURCE "/resources/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return QString::fromUtf8(file.readAll());
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
