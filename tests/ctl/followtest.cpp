// What a followed submission says to the application, and when. The application is an actor here that answers
// on cue.

#include "ctl/ctl.h"
#include "scripting/dbus/busnames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

using namespace Qt::StringLiterals;

namespace {

/// Has the application's name, notes what it is asked, and logs an entry when a property is read.
class Actor : public QDBusVirtualObject {
    Q_OBJECT

public:
    Actor()
        : m_connection(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"actor"_s))
    {
        EXPECT_TRUE(m_connection.registerVirtualObject(bus::applicationPath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(m_connection.registerService(bus::service));
    }
    ~Actor() override
    {
        m_connection.unregisterService(bus::service);
        QDBusConnection::disconnectFromBus(u"actor"_s);
    }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        asked.append(message.member());
        if (message.member() == "SubmitForNotarizing"_L1) {
            m_submission = message;
            return true;
        }
        if (message.member() == "Get"_L1) {
            log(u"on its way"_s);
            m_connection.send(message.createReply(QVariant::fromValue(QDBusVariant(u"x"_s))));
        }
        return true;
    }

    void log(const QString &text) const
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(m_submission.path(), bus::documentInterface, u"LogAppended"_s);
        signal << text << u"plain"_s;
        m_connection.send(signal);
    }
    void answer() const
    {
        m_connection.send(m_submission.createReply(QVariant::fromValue(QDBusVariant(QVariantList()))));
    }

    QStringList asked;

private:
    QDBusConnection m_connection;
    QDBusMessage m_submission;
};

} // namespace

class Following : public testing::Test {
protected:
    Following() { waitFor(u"SubmitForNotarizing"_s); }

    void waitFor(const QString &member)
    {
        host.runUntil([&] { return actor.asked.contains(member); });
    }

    TestHost host;
    Actor actor;
    Ctl ctl{host, {u"submit"_s, u"a"_s, u"--follow"_s, u"--document"_s, u"d"_s}};
};

TEST_F(Following, onlyTheFirstInterruptCancels)
{
    ctl.interrupt();
    waitFor(u"Cancel"_s);
    ctl.interrupt();
    actor.log(u"later"_s);
    ctl.waitForError(u"later"_s);
    ctl.interrupt();
    actor.log(u"latest"_s);
    ctl.waitForError(u"latest"_s);
    EXPECT_TRUE(ctl.isRunning());
    actor.answer();
    EXPECT_EQ(ctl.end(), 0);
    EXPECT_EQ(actor.asked.count(u"Cancel"_s), 1);
}

TEST_F(Following, entriesThatAreOnTheirWayAtTheAnswerAreWaitedFor)
{
    actor.answer();
    EXPECT_EQ(ctl.end(), 0);
    EXPECT_EQ(ctl.error, u"on its way\n"_s);
    EXPECT_EQ(ctl.output, QString());
}

#include "followtest.moc"
