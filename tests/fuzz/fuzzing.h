#pragma once

#include "support/core.h"
#include "tools/slwtaskresponse.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdlib>

/// The input of one round as bytes, without a copy.
inline QByteArray inputBytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

/// The same as a workflow sees what a tool has printed.
inline QString toolOutput(const std::uint8_t *data, std::size_t size)
{
    return decodedToolOutput(inputBytes(data, size));
}

/// Ends the process, which the fuzzer takes for a find.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
