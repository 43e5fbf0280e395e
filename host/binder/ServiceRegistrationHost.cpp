// The host's side of the service's registration: the service's object served over the platform's
// RPC binder (android/include/vesk/rpc_binder_host.h) on a Unix socket below the device root,
// where a board has the service manager. Prints "listening on PATH" once clients can connect,
// serves until SIGTERM or SIGINT, then ends every session and removes its socket. Its log lines go
// to stderr, or as JSON lines to the file $VESK_LOG_FILE names (veskdm serve --log FILE).
#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <string>

#include "ServiceRegistration.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"
#include "vesk/host/RootFiles.h"
#include "vesk/rpc_binder_host.h"

namespace vesk::platform {

namespace {

constexpr char kProgram[] = "vesk.hardware.veskdevicemanager-service";

std::atomic<VeskRpcServer*> served{nullptr};

void stop(int) {
    vesk_rpc_server_shutdown(served.load());
}

}  // namespace

int serveService(AIBinder* service, const char* /* instance */, uint32_t threads) {
    if (const char* log = getenv("VESK_LOG_FILE"); log != nullptr && log[0] != '\0') {
        if (!vesk::host::logToJsonFile(log)) {
            fprintf(stderr, "%s: cannot open log file %s\n", kProgram, log);
            return 1;
        }
    }
    const std::string root = vesk::host::deviceRoot();
    if (!vesk::host::makeDirectoriesBelowRoot(root, vesk::host::kServiceSocketFolder)) {
        fprintf(stderr, "%s: cannot make %s: %s\n", kProgram,
                vesk::host::pathBelowRoot(root, vesk::host::kServiceSocketFolder).c_str(),
                strerror(errno));
        return 1;
    }
    const std::string socket = vesk::host::pathBelowRoot(root, vesk::host::kServiceSocket);
    VeskRpcServer* server = nullptr;
    if (vesk_rpc_server_create(service, socket.c_str(), threads, &server) != VESK_RPC_OK) {
        fprintf(stderr, "%s: %s\n", kProgram, vesk_rpc_last_error());
        return 1;
    }
    served.store(server);
    struct sigaction action {};
    action.sa_handler = stop;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    printf("listening on %s\n", socket.c_str());
    fflush(stdout);
    VeskRpcResult result = vesk_rpc_server_join(server);
    vesk_rpc_server_destroy(server);
    return result == VESK_RPC_OK ? 0 : 1;
}

}  // namespace vesk::platform
