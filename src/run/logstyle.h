#pragma once

namespace sealwright {

/// How a stretch of the window log looks.
enum class LogStyle { plain, error, bold, italic };

} // namespace sealwright
