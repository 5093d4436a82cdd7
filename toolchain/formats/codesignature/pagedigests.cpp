#include "formats/codesignature/pagedigests.h"

#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

namespace toolchain::codesignature {

namespace {

constexpr quint64 runLength = 1 << 20;
constexpr unsigned mostThreads = 4;

std::vector<Digest> digestsOf(const QList<HashType> &kinds)
{
    std::vector<Digest> digests;
    for (const HashType kind : kinds)
        digests.emplace_back(kind);
    return digests;
}

/// One thread's share: takes the next run as long as there is one.
class Worker {
public:
    Worker(quint64 length, quint8 pageShift, const QList<HashType> &kinds, const CodeReader &reader,
           const PageSink &sink)
        : m_length(length)
        , m_pageSize(quint64(1) << pageShift)
        , m_runLength(std::max(runLength, m_pageSize))
        , m_kinds(kinds)
        , m_reader(reader)
        , m_sink(sink)
    {
    }

    [[nodiscard]] quint64 runCount() const { return (m_length + m_runLength - 1) / m_runLength; }

    void work(std::atomic<quint64> &nextRun, std::atomic<int> &error) const
    {
        std::vector<Digest> digests = digestsOf(m_kinds);
        QByteArray buffer(qsizetype(std::min(m_runLength, m_length)), Qt::Uninitialized);
        for (quint64 run = nextRun++; run < runCount() && error == 0; run = nextRun++) {
            if (!digestRun(run, digests, buffer))
                error = errno == 0 ? EIO : errno;
        }
    }

private:
    bool digestRun(quint64 number, std::vector<Digest> &digests, QByteArray &buffer) const
    {
        const quint64 offset = number * m_runLength;
        const quint64 length = std::min(m_runLength, m_length - offset);
        errno = 0;
        if (!m_reader(offset, buffer.data(), length))
            return false;
        PageRun run{offset, QByteArrayView(buffer).first(qsizetype(length)), offset / m_pageSize, {}};
        for (std::size_t kind = 0; kind < digests.size(); ++kind)
            run.digests.append(pagesOf(run.code, digests[kind], hashSize(m_kinds[qsizetype(kind)])));
        return m_sink(run);
    }

    [[nodiscard]] QByteArray pagesOf(QByteArrayView code, Digest &digest, qsizetype digestSize) const
    {
        const auto pageSize = qsizetype(m_pageSize);
        const qsizetype pages = (code.size() + pageSize - 1) / pageSize;
        QByteArray digests(pages * digestSize, Qt::Uninitialized);
        for (qsizetype page = 0; page < pages; ++page) {
            const qsizetype at = page * pageSize;
            digest.add(code.sliced(at, std::min(pageSize, code.size() - at)));
            digest.resultInto(digests.data() + page * digestSize);
        }
        return digests;
    }

    quint64 m_length;
    quint64 m_pageSize;
    quint64 m_runLength;
    const QList<HashType> &m_kinds;
    const CodeReader &m_reader;
    const PageSink &m_sink;
};

/// The digests of a single page, which is too long to be held.
bool digestWhole(quint64 length, const QList<HashType> &kinds, const CodeReader &reader, const PageSink &sink)
{
    std::vector<Digest> digests = digestsOf(kinds);
    QByteArray buffer(qsizetype(std::min(runLength, length)), Qt::Uninitialized);
    for (quint64 offset = 0; offset < length; offset += runLength) {
        const quint64 part = std::min(runLength, length - offset);
        errno = 0;
        if (!reader(offset, buffer.data(), part))
            return false;
        const QByteArrayView code = QByteArrayView(buffer).first(qsizetype(part));
        for (Digest &digest : digests)
            digest.add(code);
        if (!sink({offset, code, 0, {}}))
            return false;
    }
    PageRun last{length, {}, 0, {}};
    for (Digest &digest : digests)
        last.digests.append(digest.result());
    return sink(last);
}

} // namespace

bool digestPages(quint64 length, quint8 pageShift, const QList<HashType> &kinds, const CodeReader &reader,
                 const PageSink &sink)
{
    if (length == 0)
        return true;
    if (pageShift == 0)
        return digestWhole(length, kinds, reader, sink);
    const Worker worker(length, pageShift, kinds, reader, sink);
    const auto threads = unsigned(std::min<quint64>(
        worker.runCount(), std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads)));
    std::atomic<quint64> nextRun = 0;
    std::atomic<int> error = 0;
    std::vector<std::thread> others;
    for (unsigned index = 1; index < threads; ++index)
        others.emplace_back([&] { worker.work(nextRun, error); });
    worker.work(nextRun, error);
    for (std::thread &other : others)
        other.join();
    errno = error;
    return error == 0;
}

} // namespace toolchain::codesignature
