/*
 * A session with a server of the host's registration seam (vesk/rpc_binder_host.h) and the proxy
 * of its root object, for the tests of programs that serve over the platform's binder.
 */
#pragma once

#include <android/binder_auto_utils.h>

#include <cstdint>
#include <memory>
#include <string>

#include "vesk/rpc_binder_host.h"

namespace vesk::test {

template <typename Interface>
struct RpcConnection {
    // Connects within timeoutMs; incomingThreads serve calls the server makes into binders sent
    // to it.
    explicit RpcConnection(const std::string& path, uint32_t incomingThreads = 0,
                           uint32_t timeoutMs = 10000) {
        result = vesk_rpc_session_connect(path.c_str(), incomingThreads, timeoutMs, &session);
        message = vesk_rpc_last_error();
        if (result == VESK_RPC_OK) {
            binder = ndk::SpAIBinder(vesk_rpc_session_root(session));
            proxy = Interface::fromBinder(binder);
        }
    }
    ~RpcConnection() {
        proxy.reset();
        binder = ndk::SpAIBinder();
        vesk_rpc_session_close(session);
    }
    RpcConnection(const RpcConnection&) = delete;
    RpcConnection& operator=(const RpcConnection&) = delete;

    VeskRpcResult result = VESK_RPC_BAD_ARGUMENT;
    std::string message;
    VeskRpcSession* session = nullptr;
    ndk::SpAIBinder binder;
    std::shared_ptr<Interface> proxy;
};

}  // namespace vesk::test
