// Requirements as text. What can be compiled can be printed, and the print compiles to what prints the same.

#include "formats/codesignature/requirement.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::codesignature;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString input = QString::fromUtf8(inputBytes(data, size));
    (void)compileRequirementSet(input);
    const auto compiled = compileRequirement(input);
    if (!compiled)
        return 0;
    require(bool(meetsRequirement(*compiled, RequirementSubject())));
    const auto text = requirementText(*compiled);
    require(bool(text));
    const auto again = compileRequirement(*text);
    require(bool(again));
    require(requirementText(*again).valueOr(QString()) == *text);
    return 0;
}
