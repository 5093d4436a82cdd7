#pragma once

#include "formats/udif/chunkpacking.h"
#include "platform/result.h"
#include "support/arguments.h"

#include <QVariant>

#include <filesystem>
#include <string>
#include <vector>

namespace toolchain {

/// What every verb of hdiutil gets: the words behind the verb's own name.
using VerbArguments = std::vector<std::string>;

/// The options that every verb has, and those given.
[[nodiscard]] std::vector<Option> withCommonOptions(std::vector<Option> options);

/// Sends both streams to nowhere for good if -quiet was given and neither -verbose nor -debug was.
void keepQuietIfAsked(const ParsedArguments &arguments);

/// Writes a line to standard error if -verbose or -debug was given.
void tellDetail(const ParsedArguments &arguments, const std::string &line);

/// Writes a value to standard output as a property list in XML.
void printPropertyList(const QVariant &value);

/// Says on standard error that a verb failed and why, and answers the exit status for it.
[[nodiscard]] int failVerb(const std::string &verb, const std::string &reason);
[[nodiscard]] int failVerb(const std::string &verb, const platform::Error &reason);

/// The path in full, without a slash at its end, so that its last part is its name.
[[nodiscard]] std::filesystem::path fullPath(const std::string &path);

/// Whether a value of -imagekey tells a level of zlib's.
[[nodiscard]] bool isZlibLevel(const std::string &key);

/// How hard to pack for a format, as -imagekey tells or as the real tool does without it.
[[nodiscard]] int levelFor(const udif::ImageFormat &format, const ParsedArguments &arguments);

/// Complains about a verb's arguments, and answers the exit status for it.
[[nodiscard]] int refuseVerbArguments(const std::string &verb, const std::string &complaint);

} // namespace toolchain
