// An application whose bus goes away, or comes late.

#include "dbus/busclient.h"
#include "dbus/privatebus.h"
#include "scripting/dbus/scriptingbus.h"
#include "support/testhost.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class Rejoining : public testing::Test {
protected:
    Rejoining() { host.launch(); }

    /// Waits until the application answers on the bus that there is now.
    void expectReached()
    {
        BusClient client(host);
        host.runUntil([&] { return client.connection().interface()->isServiceRegistered(bus::service); });
        EXPECT_EQ(client.get(bus::applicationPath, bus::applicationInterface, u"AppStatus"_s),
                  QVariant(u"ready"_s));
        client.listen();
        host.document().logString(u"here"_s);
        host.runUntil([&] { return !client.heard(bus::documentInterface).isEmpty(); });
        EXPECT_EQ(client.heard(bus::documentInterface).size(), 1) << "told once";
    }

    TestHost host;
    ScriptingBus bus{host.application(), 20ms};
};

} // namespace

TEST_F(Rejoining, aBusThatComesBackIsJoinedWithTheSameDocuments)
{
    ASSERT_TRUE(bus.registerOnSessionBus());
    expectReached();
    privatebus::end();
    host.application().newDocument(0);
    privatebus::start();
    expectReached();
}

TEST_F(Rejoining, aBusThatComesLateIsJoinedThen)
{
    privatebus::end();
    EXPECT_FALSE(bus.registerOnSessionBus());
    privatebus::start();
    expectReached();
}
