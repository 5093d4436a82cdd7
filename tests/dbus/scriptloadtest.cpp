// Many scripted submissions over one application.

#include "dbus/hostonbus.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int submissions = 200;
constexpr int atOnce = 50;
constexpr int everyTenth = 10; // has no item

} // namespace

class ScriptLoad : public HostOnBus {
protected:
    static QString name(int number) { return u"Item %1"_s.arg(number); }
    static bool isMissing(int number) { return number % everyTenth == everyTenth - 1; }
    QDBusPendingCall begin(int number)
    {
        const QString app = name(number) + u".app"_s;
        return client.beginSubmit({{u"at"_s, isMissing(number) ? url(app) : appURL(app)}});
    }
    void expectItsOwn(const QDBusMessage &answer, int number)
    {
        if (isMissing(number))
            EXPECT_EQ(failureOf(answer), u"N6 "_s) << number;
        else
            EXPECT_EQ(variantOf(answer), QVariant(url(u"%1 - Notarized/%1.app"_s.arg(name(number)))));
    }

    QMap<int, QDBusPendingCall> running; ///< by the number of the submission
};

TEST_F(ScriptLoad, eachOfTwoHundredSubmissionsIsAnsweredWithItsOwnResult)
{
    int begun = 0;
    int most = 0;
    while (begun < submissions || !running.isEmpty()) {
        for (; begun < submissions && running.size() < atOnce; ++begun)
            running.insert(begun, begin(begun));
        most = std::max(most, host.workers().running());
        host.runUntil([this] {
            host.timers.fireNext();
            return std::any_of(running.cbegin(), running.cend(), std::mem_fn(&QDBusPendingCall::isFinished));
        });
        for (auto call = running.begin(); call != running.end();) {
            if (!call->isFinished()) {
                ++call;
                continue;
            }
            expectItsOwn(call->reply(), call.key());
            call = running.erase(call);
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(most, atOnce / 2);
    EXPECT_EQ(host.application().allControllers().size(), 1 + submissions - submissions / everyTenth);
    EXPECT_TRUE(host.timers.armed().isEmpty());
}
