#pragma once

#include <optional>

#include "notaryd/server.h"

namespace notaryd {

/// The socket at which systemd has listened in the service's place, with its address (sd_listen_fds(3));
/// nothing if there is none. Once in a process: no child may take the socket for its own.
[[nodiscard]] std::optional<ListenAddress> handedSocket();

} // namespace notaryd
