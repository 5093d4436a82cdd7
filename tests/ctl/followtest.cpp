// What a followed submission says to the application, and when. The application is an actor here that answers
// on cue.

#include "ctl/ctl.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

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
        busvalue::registerTypes();
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
        paths.append(message.path());
        if (message.member() == "SubmitForNotarizing"_L1) {
            m_submission = message;
            return true;
        }
        if (message.member() == "Get"_L1) {
            log(message.path(), u"on its way"_s);
            m_connection.send(message.createReply(QVariant::fromValue(QDBusVariant(u"x"_s))));
        }
        return true;
    }

    void log(const QString &path, const QString &text) const
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, bus::documentInterface, u"LogAppended"_s);
        signal << text << u"plain"_s;
        m_connection.send(signal);
    }
    /// Says that there is a new document, which the caller has had made.
    void announce(const QString &path, const QString &caller) const
    {
        const BusInterfaceProperties properties{{bus::documentInterface, {{u"Caller"_s, caller}}}};
        QDBusMessage signal = QDBusMessage::createSignal(bus::applicationPath, bus::objectManagerInterface,
                                                         u"InterfacesAdded"_s);
        signal << QVariant::fromValue(QDBusObjectPath(path)) << QVariant::fromValue(properties);
        m_connection.send(signal);
    }
    QString submitter() const { return m_submission.service(); }
    void answer() const
    {
        m_connection.send(m_submission.createReply(QVariant::fromValue(QDBusVariant(QVariantList()))));
    }

    QStringList asked;
    QStringList paths; ///< of the objects that were asked

private:
    QDBusConnection m_connection;
    QDBusMessage m_submission;
};

} // namespace

class Follower : public testing::Test {
protected:
    explicit Follower(const QStringList &receiver)
        : ctl(host, QStringList{u"submit"_s, u"a"_s, u"--follow"_s} + receiver)
    {
        waitFor(u"SubmitForNotarizing"_s);
    }

    void waitFor(const QString &member)
    {
        host.runUntil([&] { return actor.asked.contains(member); });
    }

    TestHost host;
    Actor actor;
    Ctl ctl;
};

/// A submission in a document that is there.
class Following : public Follower {
protected:
    Following()
        : Follower({u"--document"_s, u"d"_s})
    {
    }
    void log(const QString &text) const { actor.log(bus::documentsPath + u"/d"_s, text); }
};

/// A submission in a document that is yet to come.
class FollowingANewDocument : public Follower {
protected:
    FollowingANewDocument()
        : Follower({})
    {
    }
    const QString own = bus::documentsPath + u"/own"_s;
    const QString other = bus::documentsPath + u"/other"_s;
};

TEST_F(Following, onlyTheFirstInterruptCancels)
{
    ctl.interrupt();
    waitFor(u"Cancel"_s);
    ctl.interrupt();
    log(u"later"_s);
    ctl.waitForError(u"later"_s);
    ctl.interrupt();
    log(u"latest"_s);
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

TEST_F(FollowingANewDocument, anInterruptFromBeforeItIsKnownCancelsItOnceItIs)
{
    ctl.interrupt();
    ctl.waitUntilIdle();
    EXPECT_FALSE(actor.asked.contains(u"Cancel"_s));
    actor.announce(other, u":1.999"_s);
    actor.announce(own, actor.submitter());
    waitFor(u"Cancel"_s);
    EXPECT_EQ(actor.paths.last(), own);
    actor.answer();
    EXPECT_EQ(ctl.end(), 0);
    EXPECT_EQ(actor.asked.count(u"Cancel"_s), 1);
}

TEST_F(FollowingANewDocument, aDocumentOfAnotherCallerIsNotFollowed)
{
    actor.announce(other, u":1.999"_s);
    actor.log(other, u"not this"_s);
    actor.announce(own, actor.submitter());
    actor.log(other, u"nor this"_s);
    actor.log(own, u"this"_s);
    ctl.waitForError(u"this\n"_s);
    actor.answer();
    EXPECT_EQ(ctl.end(), 0);
    EXPECT_EQ(ctl.error, u"this\non its way\n"_s);
    EXPECT_EQ(actor.paths.last(), own);
}

#include "followtest.moc"
