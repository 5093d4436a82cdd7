#include "trouble/road.h"
#include "platform/scriptcommand.h"
#include "scripting/MainWinController+Scripting.h"

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "scripting/NSApplication+Scripting.h"
#include "support/items.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <future>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostPolls = 20;
const QString infoTool = u"altool--notarization-info"_s;

} // namespace

Road::Road(const RoadKind &kind)
    : m_kind(kind)
    , m_itemName(QString::fromUtf16(kind.item))
    , m_baseName(itempath::withoutExtension(m_itemName))
{
    host.tools.add(u"/usr/bin/file"_s);
    host.tools.answer(u"file"_s, {.output = "Mach-O 64-bit x86_64 executable, flags:<NOUNDEFS>\n"});
    host.tools.answer(u"productsign"_s, {.content = "signed"});
    host.tools.answer(u"security"_s,
                      {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                 "2) BB \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"});
    host.tools.answerRun(infoTool, 1, {.output = FakeTools::infoReport(u"in progress"_s)});
    if (kind.onSharedRunners)
        host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    host.preferences.setValue(key::createDiskImage, kind.asDiskImage);
    if (kind.asDiskImage) {
        const QString image = QString(m_baseName).replace(u' ', u'_') + u".dmg"_s;
        host.tools.answer(u"hdiutil"_s,
                          {.content = "image", .target = host.item(m_baseName + u" - Working/"_s + image)});
    }
    if (kind.linkTo) {
        const QString text = QString::fromUtf16(kind.linkTo);
        makeItem(host.item(text));
        items::makeLink(itemPath(), text);
    } else {
        makeItem(itemPath());
    }
    m_fingerprint = items::fingerprint(itemPath());
    host.launch();
}

void Road::makeItem(const QString &path) const
{
    const QString extension = itempath::lowerExtension(path);
    if (extension == "pkg"_L1 || extension == "dmg"_L1)
        return items::makeFile(path, "what is in it");
    items::makeBundle(path);
    items::makeFile(path + u"/Contents/MacOS/helper"_s, items::machO(), true);
    items::makeFile(path + u"/Contents/Resources/Scripts/main.scpt"_s, "script");
    items::makeLink(path + u"/Contents/Resources/link"_s, u"Read Me.txt"_s);
}

QList<ToolCall> Road::undisturbedRuns(const RoadKind &kind)
{
    Road road(kind);
    road.walk();
    road.expectEnd({u"Notarized", 0, u""});
    return road.host.tools.calls();
}

QStringList Road::undisturbedChanges(const RoadKind &kind)
{
    QStringList changes;
    Road road(kind);
    road.host.files.failure = [&changes](const QString &operation, const QString &) {
        changes.append(operation);
        return QString();
    };
    road.walk();
    road.host.files.failure = nullptr;
    return changes;
}

void Road::begin()
{
    const auto command = std::make_shared<ScriptCommand>(
        QVariantMap{{argument::at, itempath::toUrl(itemPath())}}, [this](const ScriptReply &answer) {
            EXPECT_FALSE(reply) << "answered twice";
            reply = answer;
        });
    command->execute([this](const ScriptCommandPtr &executing) {
        host.application().scripting().AESubmitForNotarizing(executing);
    });
    m_document = host.application().allControllers().last();
}

void Road::goOnToTheEnd()
{
    host.settle();
    for (int poll = 0; poll < mostPolls && host.timers.fireNext() >= 0; ++poll)
        host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

void Road::walk()
{
    begin();
    goOnToTheEnd();
}

void Road::cancelFromWorker()
{
    std::promise<void> done;
    host.mainQueue.post([this, &done] {
        m_document->doCancel();
        done.set_value();
    });
    done.get_future().wait();
}

QString Road::folder() const
{
    const QString prefix = m_baseName + u" - "_s;
    QStringList suffixes;
    for (const QString &name : host.listing()) {
        if (name.startsWith(prefix))
            suffixes.append(name.mid(prefix.size()));
    }
    return suffixes.join(u", "_s);
}

QString Road::originalInside(const QString &suffix) const
{
    return host.item(u"%1 - %2/%1 - Unmodified Original/%3"_s.arg(m_baseName, suffix, m_itemName));
}

void Road::expectItemIsSafe()
{
    const bool isInPlace = items::fingerprint(itemPath()) == m_fingerprint;
    const bool isPutAway = items::fingerprint(originalInside(folder())) == m_fingerprint;
    EXPECT_NE(isInPlace, isPutAway) << "in place: " << isInPlace << ", put away: " << isPutAway;
}

void Road::putItemBack()
{
    if (QFileInfo::exists(itemPath()))
        return;
    EXPECT_TRUE(QFile::rename(originalInside(folder()), itemPath()));
}

void Road::expectIdleDocument()
{
    if (TestHost::window(*m_document).sheet)
        TestHost::window(*m_document).answerSheet();
    EXPECT_EQ(m_document->statusString(), u"ready"_s);
    for (const auto *flag : {&m_document->isBusy, &m_document->isSubmitting, &m_document->isPolling,
                             &m_document->isScripted, &m_document->suppressDialogs})
        EXPECT_FALSE((*flag)());
    EXPECT_FALSE(m_document->staplingTimer());
    EXPECT_FALSE(m_document->progressIndicator.isAnimating());
}

void Road::expectEnd(const RoadEnd &end)
{
    ASSERT_TRUE(reply) << "never answered";
    EXPECT_EQ(reply->errorNumber, end.errorNumber) << reply->errorText.toStdString();
    EXPECT_EQ(reply->errorText.section(u": "_s, 0, 0), QString::fromUtf16(end.title));
    EXPECT_EQ(reply->result.isValid(), end.errorNumber == 0);
    EXPECT_EQ(folder(), QString::fromUtf16(end.folder));
    expectItemIsSafe();
    expectIdleDocument();
    ++casesHeld;
}

void Road::expectSecondWalkSucceeds()
{
    reply.reset();
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap{{argument::at, itempath::toUrl(itemPath())}},
                                        [this](const ScriptReply &answer) { reply = answer; });
    command->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(*m_document).AESubmitForNotarizing(executing);
    });
    goOnToTheEnd();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 0) << reply->errorText.toStdString();
    EXPECT_EQ(items::fingerprint(originalInside(u"Notarized"_s)), m_fingerprint);
}

int runNumber(const QList<ToolCall> &runs, int index)
{
    int number = 0;
    for (int i = 0; i <= index; ++i)
        number += runs.at(i).tool == runs.at(index).tool ? 1 : 0;
    return number;
}
