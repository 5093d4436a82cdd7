// Property lists of all forms. What could be read and can be written as XML is read back the same.

#include "platform/propertylist/propertylist.h"
#include "fuzz/fuzzing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto read = platform::propertyListFromData(inputBytes(data, size));
    require(read.valueOr({}).isValid() == read.error().isNull());
    if (!read)
        return 0;
    require(platform::propertyListDescription(*read).size() >= 0);
    const auto written = platform::xmlPropertyListData(*read);
    if (!written)
        return 0;
    const auto readBack = platform::propertyListFromData(*written);
    require(bool(readBack));
    require(platform::xmlPropertyListData(*readBack).valueOr({}) == *written);
    return 0;
}
