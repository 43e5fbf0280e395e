/*
 * Where the service meets its clients: the one function in which the board and the host differ.
 *   board (ServiceRegistrationDevice.cpp): registered with the service manager under `instance`
 *     and served by the binder thread pool, for as long as the process lives;
 *   host (host/binder/ServiceRegistrationHost.cpp): served over the platform's RPC binder on a
 *     Unix socket below the device root until SIGTERM or SIGINT, then the socket is removed.
 */
#pragma once

#include <android/binder_ibinder.h>

#include <cstdint>

namespace vesk::platform {

// Serves `service` as `instance`, up to `threads` calls at once (of each client, on the host);
// the process's exit status when serving ends, 1 when it could not start.
int serveService(AIBinder* service, const char* instance, uint32_t threads);

}  // namespace vesk::platform
