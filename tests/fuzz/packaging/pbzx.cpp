// A payload as it lies in a package: packed in one of the ways that are known.

#include "formats/package/payload.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::package;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    quint64 unpacked = 0;
    const CpioVisitor visitor{[](const CpioEntry &) { return platform::Outcome(); },
                              [&](QByteArrayView content) {
                                  unpacked += quint64(content.size());
                                  return unpacked < (64 << 20) ? platform::Outcome()
                                                               : platform::Outcome(platform::Error{});
                              }};
    PayloadReader reader(visitor);
    if (reader.add(inputBytes(data, size)))
        reader.finish().ignore();
    return 0;
}
