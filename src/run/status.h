#pragma once

#include <QStringView>

namespace sealwright {

/// The status words of a document and of the application.
namespace status {
inline constexpr QStringView loading = u"loading";
inline constexpr QStringView ready = u"ready";
inline constexpr QStringView interacting = u"interacting";
inline constexpr QStringView submitting = u"submitting";
inline constexpr QStringView waiting = u"waiting";
inline constexpr QStringView stapling = u"stapling";
inline constexpr QStringView fetching = u"fetching";
} // namespace status

} // namespace sealwright
