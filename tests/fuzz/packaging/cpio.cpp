// The archive in a payload, whole and in two pieces: both must be read alike.

#include "formats/package/cpio.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::package;

namespace {

struct Reading {
    QByteArray paths;
    quint64 bytes = 0;
    bool isGood = false;
};

Reading readingOf(const QByteArray &first, const QByteArray &second)
{
    Reading reading;
    const CpioVisitor visitor{[&](const CpioEntry &entry) {
                                  require(!entry.path.startsWith('/')
                                          && !("/" + entry.path + "/").contains("/../"));
                                  reading.paths += entry.path + '\n';
                                  return platform::Outcome();
                              },
                              [&](QByteArrayView content) {
                                  reading.bytes += quint64(content.size());
                                  return platform::Outcome();
                              }};
    CpioReader reader(visitor);
    reading.isGood = reader.add(first) && reader.add(second) && reader.finish();
    return reading;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const Reading whole = readingOf(bytes, {});
    const Reading halves = readingOf(bytes.first(bytes.size() / 2), bytes.mid(bytes.size() / 2));
    require(whole.isGood == halves.isGood && whole.paths == halves.paths && whole.bytes == halves.bytes);
    return 0;
}
