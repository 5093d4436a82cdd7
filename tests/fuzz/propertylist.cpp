// Property lists of all forms. What could be read and can be written as XML is read back the same.

#include "platform/propertylist/propertylist.h"
#include "fuzz/fuzzing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto read = platform::propertyListFromData(inputBytes(data, size));
    require(read.value.isValid() == read.error.isNull());
    if (!read)
        return 0;
    require(!read.value.isValid() || platform::propertyListDescription(read.value).size() >= 0);
    const auto written = platform::xmlPropertyListData(read.value);
    if (!written)
        return 0;
    const auto readBack = platform::propertyListFromData(written.data);
    require(readBack.error.isNull());
    require(platform::xmlPropertyListData(readBack.value).data == written.data);
    return 0;
}
