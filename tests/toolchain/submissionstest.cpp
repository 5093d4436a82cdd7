// The service's submissions without its sockets: what comes at the wrong time.

#include "notaryd/submissions.h"
#include "toolchain/bundlebuilder.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using notaryd::NotaryRequest;
using notaryd::Submissions;

namespace {

/// Lets others wait until something has happened.
class Event {
public:
    void happen()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_hasHappened = true;
        }
        m_changed.notify_all();
    }
    void wait()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_hasHappened; });
    }
    /// False if it does not happen at all, as far as a test can tell.
    [[nodiscard]] bool happens()
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::minutes(1), [this] { return m_hasHappened; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_hasHappened = false;
};

class ReviewedSubmissions : public testing::Test {
protected:
    ~ReviewedSubmissions() override { mayEnd.happen(); } // a review that goes on would be waited for

    /// The identifier of a submission that has been announced.
    [[nodiscard]] QString announce()
    {
        NotaryRequest request;
        request.archiveName = u"Some.zip"_s;
        request.archiveDigest = QByteArray(64, '0');
        request.uploaded = QDateTime::currentDateTimeUtc();
        const auto session = submissions.begin(request, QDateTime::currentDateTimeUtc());
        EXPECT_TRUE(session) << session.error().toStdString();
        return session ? session->id : QString();
    }

    /// A file as an upload leaves it when its last byte has come.
    [[nodiscard]] QString received(const QString &id, const QString &name) const
    {
        QString file = submissions.folderOf(id) + u'/' + name;
        bundlebuilder::writeFile(file, "bytes");
        return file;
    }

    QTemporaryDir folder;
    Event begun;
    Event mayEnd;
    Event reviewed;
    std::atomic<int> reviews = 0;
    Submissions submissions{folder.path(),
                            [this](NotaryRequest &, const QString &path) {
                                ++reviews;
                                EXPECT_EQ(bundlebuilder::readFile(path), "bytes");
                                begun.happen();
                                mayEnd.wait();
                            },
                            [this](const NotaryRequest &) { reviewed.happen(); }};
};

} // namespace

TEST_F(ReviewedSubmissions, takeNothingMoreOnceTheReviewHasBegun)
{
    const QString id = announce();
    const auto refusal = submissions.place(id, received(id, u"first"_s));
    ASSERT_FALSE(refusal) << refusal->reason.toStdString();
    EXPECT_FALSE(submissions.place(id, received(id, u"again"_s))) << "as long as nobody has asked";
    static_cast<void>(submissions.ask(id));
    begun.wait();
    const auto late = submissions.place(id, received(id, u"late"_s));
    ASSERT_TRUE(late);
    EXPECT_EQ(late->code, u"AccessDenied"_s);
    mayEnd.happen();
    reviewed.wait();
    const auto later = submissions.place(id, received(id, u"later"_s));
    ASSERT_TRUE(later);
    EXPECT_EQ(later->code, u"AccessDenied"_s);
    EXPECT_FALSE(submissions.isBusy() && reviews > 1) << "no second review waits";
    EXPECT_EQ(reviews, 1);
}

TEST_F(ReviewedSubmissions, whoseReplyWasLostArePlacedOnlyOnce)
{
    const QString id = announce();
    const QString whole = received(id, u"whole"_s);
    ASSERT_FALSE(submissions.place(id, whole));
    EXPECT_FALSE(submissions.place(id, whole)) << "which has been moved";
    mayEnd.happen();
    static_cast<void>(submissions.ask(id));
    reviewed.wait();
    EXPECT_EQ(reviews, 1);
}

TEST_F(ReviewedSubmissions, ofPartsAreJoinedBeforeTheReviewAlsoAfterAnInterruption)
{
    const QString id = announce();
    QByteArray list;
    for (const QByteArray part : {"by", "te", "s"}) {
        const QString file = received(id, u"part-"_s + QString::fromLatin1(part));
        bundlebuilder::writeFile(file, part);
        list += QByteArray::number(part.size()) + ' ' + file.toUtf8() + '\n';
    }
    bundlebuilder::writeFile(submissions.folderOf(id) + u"/part-by"_s, "byt"); // half of the second had come
    const QString file = submissions.folderOf(id) + u"/list.parts"_s;
    bundlebuilder::writeFile(file, list);
    ASSERT_FALSE(submissions.place(id, file));
    mayEnd.happen();
    static_cast<void>(submissions.ask(id));
    reviewed.wait();
    EXPECT_EQ(reviews, 1);
}

TEST_F(ReviewedSubmissions, thatCannotBeReadForAMomentAreReviewedLater)
{
    const QByteArray scale = qgetenv("SEALWRIGHT_WAIT_SCALE");
    qputenv("SEALWRIGHT_WAIT_SCALE", "0.05"); // the review begins by itself after half a second
    const QString id = announce();
    ASSERT_FALSE(submissions.place(id, received(id, u"whole"_s)));
    const QByteArray request = folder.filePath(u"requests/%1.json"_s.arg(id)).toUtf8();
    const QByteArray kept = request + ".kept";
    const QByteArray pipe = request + ".pipe";
    ASSERT_EQ(link(request.constData(), kept.constData()), 0);
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    ASSERT_EQ(std::rename(pipe.constData(), request.constData()), 0);
    int writer = -1; // until somebody reads there
    while (writer < 0 && reviews == 0) {
        writer = open(request.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (writer >= 0) {
        EXPECT_EQ(write(writer, "half", 4), 4);
        close(writer);
    }
    ASSERT_EQ(std::rename(kept.constData(), request.constData()), 0);
    mayEnd.happen();
    EXPECT_TRUE(reviewed.happens());
    EXPECT_EQ(reviews, 1);
    qputenv("SEALWRIGHT_WAIT_SCALE", scale);
}

TEST_F(ReviewedSubmissions, thatNobodyHasMadeAreRefused)
{
    const auto refusal =
        submissions.place(u"11111111-2222-3333-4444-555555555555"_s, folder.filePath(u"x"_s));
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->code, u"InternalError"_s);
}
