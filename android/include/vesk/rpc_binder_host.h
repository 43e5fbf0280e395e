/*
 * The host side of service registration: a binder served and reached over the platform's RPC
 * binder on a Unix domain socket, where a board has the binder driver and the service manager
 * (AServiceManager_addService, AServiceManager_waitForService).
 *
 * C only: the functions live in the library that holds the platform's libbinder_ndk, whose C++
 * inside is its own. Every function that can fail returns a VeskRpcResult; on failure,
 * vesk_rpc_last_error() gives one line saying what failed, on the calling thread, until that
 * thread's next call here.
 */
#ifndef VESK_RPC_BINDER_HOST_H
#define VESK_RPC_BINDER_HOST_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct AIBinder;
typedef struct AIBinder AIBinder;

typedef enum VeskRpcResult {
    VESK_RPC_OK = 0,
    /* A null handle or binder, an empty path, a path longer than a Unix socket address holds. */
    VESK_RPC_BAD_ARGUMENT = 1,
    /* Nothing at the socket path. */
    VESK_RPC_NO_SUCH_SOCKET = 2,
    /* The path is a file, a folder or anything else that is not a socket. */
    VESK_RPC_NOT_A_SOCKET = 3,
    /* A socket nobody listens on any more: its server died. */
    VESK_RPC_NO_SERVICE = 4,
    /* Something listens, but it does not answer as an RPC binder server, or serves no root. */
    VESK_RPC_NOT_A_SERVICE = 5,
    /* No answer within the time given. */
    VESK_RPC_TIMEOUT = 6,
    /* Another server serves this path. */
    VESK_RPC_IN_USE = 7,
    /* A system call failed; the message names it and its errno. */
    VESK_RPC_SYSTEM_ERROR = 8,
} VeskRpcResult;

/* The one-line message of the calling thread's last failure here ("" after a success). */
const char* vesk_rpc_last_error(void);

/* The name of a result ("VESK_RPC_TIMEOUT"). */
const char* vesk_rpc_result_name(VeskRpcResult result);

typedef struct VeskRpcServer VeskRpcServer;

/*
 * Listens on a Unix socket at socketPath for clients of root. Returns once the socket accepts
 * connections; vesk_rpc_server_join serves them. Each client session gets up to maxThreads
 * connections (at least 1), so that as many of its threads are served at once; clients are
 * served side by side, each by threads of its own.
 *
 * Beside it, on socketPath + ".dump", the server answers dump requests (vesk_rpc_dump) while it
 * is joined: RPC binder cannot carry the file descriptor a dump writes to, so the root's dump()
 * (AIBinder_dump) runs in the server's process with that connection as its descriptor. Both
 * paths must fit a Unix socket address.
 *
 * The server holds a lock on socketPath + ".lock" (left in place) while it lives, so one server
 * at a time serves a path: a second gets VESK_RPC_IN_USE. A socket file at the path without a
 * live server (its server died) is replaced; any other file there is refused
 * (VESK_RPC_NOT_A_SOCKET), never removed. The server holds a strong reference to root.
 */
VeskRpcResult vesk_rpc_server_create(AIBinder* root, const char* socketPath, uint32_t maxThreads,
                                     VeskRpcServer** server);

/*
 * Serves until vesk_rpc_server_shutdown is called (from any thread, a binder thread or a signal
 * handler), then ends every session and returns. Call it once per server.
 */
VeskRpcResult vesk_rpc_server_join(VeskRpcServer* server);

/* Asks a joined server to stop. Async-signal-safe; a server not yet joined stops when joined. */
void vesk_rpc_server_shutdown(VeskRpcServer* server);

/*
 * Removes the socket (if it is still this server's) and frees the server. Call it after
 * vesk_rpc_server_join returned, or instead of joining.
 */
void vesk_rpc_server_destroy(VeskRpcServer* server);

typedef struct VeskRpcSession VeskRpcSession;

/*
 * Connects to the server at socketPath and gets its root binder, within timeoutMs milliseconds
 * (0: the default of 5000). incomingThreads threads of this process serve calls the server makes
 * into binders this process sends it (callbacks); 0 if it sends none.
 *
 * After the session is set up, calls on its binders are not timed: a server that dies makes
 * every call return STATUS_DEAD_OBJECT. A transaction larger than RPC binder's limit (100,000
 * bytes) ends the session (the server drops it): that call fails, later ones return
 * STATUS_DEAD_OBJECT, and a new session is needed.
 */
VeskRpcResult vesk_rpc_session_connect(const char* socketPath, uint32_t incomingThreads,
                                       uint32_t timeoutMs, VeskRpcSession** session);

/*
 * What the root binder of the server at socketPath writes when dumped with args (as `dumpsys`
 * dumps a service on a board), copied to outFd until the server ends it. Fails as
 * vesk_rpc_session_connect does when nothing serves the dump socket, and with VESK_RPC_TIMEOUT
 * when the server sends nothing for timeoutMs milliseconds (0: the default of 5000).
 */
VeskRpcResult vesk_rpc_dump(const char* socketPath, const char* const* args, uint32_t argCount,
                            int outFd, uint32_t timeoutMs);

/* The server's root binder, with a strong reference the caller releases (AIBinder_decStrong). */
AIBinder* vesk_rpc_session_root(VeskRpcSession* session);

/*
 * Ends the session: its incoming threads stop (waited for), calls on its binders return
 * STATUS_DEAD_OBJECT from then on. Frees the session.
 */
void vesk_rpc_session_close(VeskRpcSession* session);

/*
 * Where the platform's own log lines go (liblog's and libbase's inside the library): to logger,
 * or to stderr as the platform's host build writes them when logger is null (the default).
 * priority is liblog's (ANDROID_LOG_INFO ...).
 */
typedef void (*VeskRpcLogger)(int priority, const char* tag, const char* message);
void vesk_rpc_set_platform_logger(VeskRpcLogger logger);

#ifdef __cplusplus
}
#endif

#endif /* VESK_RPC_BINDER_HOST_H */
