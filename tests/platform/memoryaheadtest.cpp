#include "platform/memoryahead.h"

#include <QtGlobal>

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

using namespace platform;

namespace {

constexpr qsizetype size = 32LL << 20;
constexpr qsizetype firstStep = 1LL << 20;

/// Memory that nobody has touched.
class FreshMemory {
public:
    FreshMemory()
        : m_bytes(static_cast<char *>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        madvise(m_bytes, size, MADV_NOHUGEPAGE);
    }
    ~FreshMemory() { munmap(m_bytes, size); }
    FreshMemory(const FreshMemory &) = delete;
    FreshMemory &operator=(const FreshMemory &) = delete;

    char *bytes() const { return m_bytes; }

    qsizetype readyPages() const
    {
        const auto pageSize = qsizetype(sysconf(_SC_PAGESIZE));
        std::vector<unsigned char> pages(size_t(size / pageSize));
        mincore(m_bytes, size, pages.data());
        return std::count_if(pages.begin(), pages.end(), [](unsigned char page) { return page & 1; });
    }

private:
    char *const m_bytes;
};

/// Whether the host makes memory ready at all.
bool isHostAble()
{
#ifdef MADV_POPULATE_WRITE
    const FreshMemory memory;
    return madvise(memory.bytes(), firstStep, MADV_POPULATE_WRITE) == 0;
#else
    return false;
#endif
}

} // namespace

TEST(MemoryAhead, isReadyBeforeItIsWritten)
{
    const FreshMemory memory;
    MemoryAhead ahead;
    ahead.follow(memory.bytes(), size);
    ahead.pause();
    EXPECT_EQ(memory.readyPages() > 0, isHostAble());
}

TEST(MemoryAhead, isNotMadeReadyForLittle)
{
    const FreshMemory memory;
    MemoryAhead ahead;
    ahead.follow(memory.bytes(), firstStep);
    ahead.pause();
    EXPECT_EQ(memory.readyPages(), 0);
}

TEST(MemoryAhead, goesNoFurtherThanWritingWillComeSoon)
{
    const FreshMemory memory;
    MemoryAhead ahead;
    for (int call = 0; call < 64; ++call) {
        ahead.follow(memory.bytes(), size);
        ahead.pause();
    }
    const auto most = qsizetype(24LL << 20) / sysconf(_SC_PAGESIZE);
    EXPECT_LT(memory.readyPages(), most);
}

TEST(MemoryAhead, keepsWhatHasBeenWrittenMeanwhile)
{
    const FreshMemory memory;
    std::fill_n(memory.bytes(), size, 'x');
    MemoryAhead ahead;
    for (qsizetype done = 0; done < size; done += firstStep)
        ahead.follow(memory.bytes() + done, size - done);
    ahead.pause();
    EXPECT_EQ(std::count(memory.bytes(), memory.bytes() + size, 'x'), size);
}
