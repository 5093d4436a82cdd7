// The verdict and the log's address in the plain report of a request.

#include "fuzz/fuzzing.h"
#include "notarization/pollinginfo.h"
#include "support/core.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString report = toolOutput(data, size);
    const QString word = verdict(report);
    require(word == u"No result" || word == word.trimmed().toLower());
    require(!logFileURL(report).contains(u'\n'));
    return 0;
}
