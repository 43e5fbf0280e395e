// ping_server SOCKET [MAX_THREADS]: serves IPing on a Unix socket through the host's
// registration seam until SIGTERM or SIGINT; prints "listening on SOCKET" once clients can
// connect.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>

#include "PingService.h"
#include "vesk/rpc_binder_host.h"

namespace {

VeskRpcServer* server = nullptr;

void stop(int) {
    vesk_rpc_server_shutdown(server);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: ping_server SOCKET [MAX_THREADS]\n");
        return 2;
    }
    uint32_t threads = argc == 3 ? static_cast<uint32_t>(atoi(argv[2])) : 4;
    auto service = ndk::SharedRefBase::make<vesk::test::PingService>();
    if (vesk_rpc_server_create(service->asBinder().get(), argv[1], threads, &server) != VESK_RPC_OK) {
        fprintf(stderr, "ping_server: %s\n", vesk_rpc_last_error());
        return 1;
    }
    struct sigaction action {};
    action.sa_handler = stop;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    printf("listening on %s\n", argv[1]);
    fflush(stdout);
    VeskRpcResult result = vesk_rpc_server_join(server);
    vesk_rpc_server_destroy(server);
    return result == VESK_RPC_OK ? 0 : 1;
}
