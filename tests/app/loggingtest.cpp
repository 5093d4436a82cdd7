// What a submission tells whoever looks for a fault.

#include "document/mainwincontroller.h"
#include "support/items.h"
#include "support/testhost.h"

#include "app/preferencekeys.h"

#include <QLoggingCategory>
#include <QScopeGuard>

#include <gtest/gtest.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

std::mutex mutex; // workers note as well
QSet<QString> categories;
QStringList messages;

void note(QtMsgType, const QMessageLogContext &context, const QString &message)
{
    const std::scoped_lock lock(mutex);
    categories.insert(QString::fromLatin1(context.category));
    messages.append(message);
}

} // namespace

TEST(Journal, hasACategoryForEachRoomAndNoNameOfAPassword)
{
    TestHost host;
    items::makeBundle(host.item(u"Foo.app"_s));
    host.preferences.setValue(key::appPassValue, u"the-name-of-a-password"_s);
    QLoggingCategory::setFilterRules(u"sealwright.*.debug=true"_s);
    const auto earlier = qInstallMessageHandler(note);
    const auto restored = qScopeGuard([earlier] {
        qInstallMessageHandler(earlier);
        QLoggingCategory::setFilterRules({});
    });
    host.launch();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    ASSERT_TRUE(host.listing().contains(u"Foo - Notarized"_s));
    for (const char *const room : {"app", "document", "notarization", "run", "signing", "tools"})
        EXPECT_TRUE(categories.contains(u"sealwright."_s + QString::fromLatin1(room))) << room;
    EXPECT_TRUE(messages.filter(u"the-name-of-a-password"_s).isEmpty());
}
