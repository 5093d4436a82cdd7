#include <QCoreApplication>

#include <gtest/gtest.h>

#ifdef __SANITIZE_THREAD__
/// The thread sanitizer does not see the atomic counters of shared data that the Qt libraries themselves
/// count down, since those are built without it. So it must not judge what they do with such data either, nor
/// who frees it last.
extern "C" const char *__tsan_default_suppressions();
extern "C" const char *__tsan_default_suppressions()
{
    return "called_from_lib:libQt6Core.so.6\n"
           "race:QTypedArrayData*::deallocate\n";
}
#endif

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
