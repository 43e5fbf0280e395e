# libbinder_ndk as the platform builds it for a Linux host (RPC binder over Unix domain sockets),
# with libbinder, libbase, libutils, libcutils and liblog of the tree and libc++ inside one
# shared library, libvesk_binder_ndk.so. Its dynamic symbols are libbinder_ndk's C API (its own
# map) and the host side of the service-registration seam (include/vesk/rpc_binder_host.h):
# everything C++ stays inside, so a process whose own code links Debian's liblog, libutils and
# libcutils (other versions of the same names) or libstdc++ loads it without either side's
# names binding to the other's.

set(tree ${VESK_ANDROID_TREE})
android_bp_module(LIBLOG system/logging/liblog liblog)
android_bp_module(LIBBASE system/libbase libbase)
android_bp_module(LIBCUTILS system/core/libcutils libcutils)
android_bp_module(LIBUTILS system/core/libutils libutils)
android_bp_module(LIBBINDER frameworks/native/libs/binder libbinder)
android_bp_module(LIBBINDER_NDK frameworks/native/libs/binder/ndk libbinder_ndk)
# The Java bridges (AIBinder_fromJavaBinder, AParcel_fromJavaParcel) need libandroid_runtime and
# a Java VM: a host process has neither.
list(FILTER LIBBINDER_NDK_SOURCES EXCLUDE REGEX "_jni\\.cpp$")

# Three headers the code names that live in parts of a tree this build does not need
# (frameworks/base, libbacktrace), and the C++ <stdatomic.h> of libc++ 15 and bionic, which
# libc++ 14 lacks (clang's own is C only and breaks <atomic>): written here, in the build folder.
set(generated_include ${CMAKE_BINARY_DIR}/include)
file(WRITE ${generated_include}/android_runtime/vm.h [[
#pragma once
#include <jni.h>
// The Java VM of a process that runs one (libandroid_runtime); looked up by name at run time.
extern "C" JavaVM* AndroidRuntimeGetJavaVM();
]])
file(WRITE ${generated_include}/backtrace/backtrace_constants.h [[
#pragma once
// A pid or tid of this value means the calling process or thread.
#define BACKTRACE_CURRENT_PROCESS (-1)
#define BACKTRACE_CURRENT_THREAD (-1)
#define MAX_BACKTRACE_FRAMES 256
]])
file(WRITE ${generated_include}/stdatomic.h [[
#pragma once
#ifdef __cplusplus
// C's atomics in C++ are <atomic>'s (C++23 [stdatomic.h.syn]).
#include <atomic>
#define _Atomic(T) std::atomic<T>
using std::atomic_bool;
using std::atomic_char;
using std::atomic_int;
using std::atomic_int_least32_t;
using std::atomic_int_least64_t;
using std::atomic_intptr_t;
using std::atomic_llong;
using std::atomic_long;
using std::atomic_size_t;
using std::atomic_uint;
using std::atomic_uint_least32_t;
using std::atomic_uint_least64_t;
using std::atomic_uintptr_t;
using std::atomic_ullong;
using std::atomic_ulong;
using std::atomic_compare_exchange_strong;
using std::atomic_compare_exchange_strong_explicit;
using std::atomic_compare_exchange_weak;
using std::atomic_compare_exchange_weak_explicit;
using std::atomic_exchange;
using std::atomic_exchange_explicit;
using std::atomic_fetch_add;
using std::atomic_fetch_add_explicit;
using std::atomic_fetch_and;
using std::atomic_fetch_and_explicit;
using std::atomic_fetch_or;
using std::atomic_fetch_or_explicit;
using std::atomic_fetch_sub;
using std::atomic_fetch_sub_explicit;
using std::atomic_init;
using std::atomic_is_lock_free;
using std::atomic_load;
using std::atomic_load_explicit;
using std::atomic_store;
using std::atomic_store_explicit;
using std::atomic_thread_fence;
using std::memory_order;
using std::memory_order_acq_rel;
using std::memory_order_acquire;
using std::memory_order_consume;
using std::memory_order_relaxed;
using std::memory_order_release;
using std::memory_order_seq_cst;
#else
#include_next <stdatomic.h>
#endif
]])

# :libbinder_aidl, the service manager's interfaces, made by the tree's aidl with the cpp backend
# as Soong's aidl rule for a cc module makes them.
set(libbinder_aidl_out ${CMAKE_BINARY_DIR}/libbinder_aidl)
set(libbinder_aidl_sources)
foreach(file IN LISTS LIBBINDER_AIDL)
    foreach(root IN LISTS LIBBINDER_AIDL_ROOTS)
        cmake_path(IS_PREFIX root ${file} NORMALIZE under_root)
        if(under_root)
            cmake_path(RELATIVE_PATH file BASE_DIRECTORY ${root} OUTPUT_VARIABLE relative)
        endif()
    endforeach()
    string(REGEX REPLACE "\\.aidl$" ".cpp" relative ${relative})
    list(APPEND libbinder_aidl_sources ${libbinder_aidl_out}/src/${relative})
endforeach()
list(TRANSFORM LIBBINDER_AIDL_ROOTS PREPEND -I OUTPUT_VARIABLE aidl_roots)
add_custom_command(
    OUTPUT ${libbinder_aidl_sources}
    COMMAND aidl --lang=cpp ${aidl_roots} -h ${libbinder_aidl_out}/include
            -o ${libbinder_aidl_out}/src ${LIBBINDER_AIDL}
    DEPENDS aidl ${LIBBINDER_AIDL}
    COMMENT "aidl --lang=cpp :libbinder_aidl"
    VERBATIM)

set(binder_includes
    ${generated_include}
    ${libbinder_aidl_out}/include
    ${tree}/system/libbase/include
    ${tree}/system/core/libprocessgroup/include
    ${tree}/frameworks/native/libs/binder/include
    ${tree}/frameworks/native/libs/binder/ndk/include_cpp
    ${tree}/frameworks/native/libs/binder/ndk/include_ndk
    ${tree}/frameworks/native/libs/binder/ndk/include_platform
    ${tree}/libnativehelper/include_jni)

if(VESK_SANITIZE)
    set(sanitize -fsanitize=${VESK_SANITIZE})
endif()
foreach(module LIBLOG LIBBASE LIBCUTILS LIBUTILS LIBBINDER LIBBINDER_NDK)
    string(TOLOWER ${module} target)
    add_library(${target} OBJECT ${${module}_SOURCES})
    soong_flags(${target} ${module})
    target_include_directories(${target} PRIVATE ${binder_includes})
    # libbinder's include_dirs: Android's binder.h, newer than the host kernel's.
    target_include_directories(${target} SYSTEM PRIVATE ${tree}/bionic/libc/kernel/uapi)
    target_compile_options(${target} PRIVATE ${sanitize})
endforeach()
target_sources(libbinder PRIVATE ${libbinder_aidl_sources})

# The export list: libbinder_ndk's own map, less its C++ bridges to libbinder
# (AIBinder_fromPlatformBinder, AIBinder_toPlatformBinder take libbinder's types, which only the
# seam inside uses), and the seam's functions.
set(ndk_map ${tree}/frameworks/native/libs/binder/ndk/libbinder_ndk.map.txt)
file(READ ${ndk_map} map)
string(REGEX REPLACE "extern \"C\\+\\+\" {[^}]*};" "" map "${map}")
file(READ ${CMAKE_CURRENT_SOURCE_DIR}/rpc/rpc_binder_host.map seam_map)
set(export_map ${CMAKE_BINARY_DIR}/libvesk_binder_ndk.map)
file(CONFIGURE OUTPUT ${export_map} CONTENT "${map}\n${seam_map}" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ndk_map}
             ${CMAKE_CURRENT_SOURCE_DIR}/rpc/rpc_binder_host.map)

add_library(vesk_binder_ndk SHARED rpc/RpcBinderHost.cpp)
target_include_directories(vesk_binder_ndk PRIVATE include ${binder_includes}
                                                   ${SOONG_GLOBAL_INCLUDES})
target_compile_options(vesk_binder_ndk PRIVATE -std=gnu++17 -stdlib=libc++ -O2 -g -DANDROID
                       -DNDEBUG -fno-exceptions -Wall -Wextra -Werror ${sanitize})
target_link_libraries(vesk_binder_ndk PRIVATE libbinder_ndk libbinder libutils libcutils libbase
                      liblog)
list(REMOVE_ITEM SOONG_GLOBAL_LDFLAGS -Wl,--no-undefined-version)  # the map names the Java bridges
target_link_options(vesk_binder_ndk PRIVATE
    ${SOONG_GLOBAL_LDFLAGS} ${SOONG_STATIC_LIBCXX} -Wl,--exclude-libs,ALL
    -Wl,--version-script,${export_map} ${sanitize}
    # Everything resolved at link time, but the sanitizer's runtime, which the program brings.
    $<$<NOT:$<BOOL:${VESK_SANITIZE}>>:-Wl,--no-undefined>)
set_target_properties(vesk_binder_ndk PROPERTIES LINK_DEPENDS ${export_map})
# libutils names libutilscallstack's functions weakly and does without them when they are null,
# as on a board without that library. Null here, so that they never bind to the same names of
# another libutils the process has loaded (Debian's defines them).
foreach(function _ZN7android9CallStack18getCurrentInternalEi
                 _ZN7android9CallStack16logStackInternalEPKcPKS0_19android_LogPriority
                 _ZN7android9CallStack21stackToStringInternalEPKcPKS0_
                 _ZN7android9CallStack11deleteStackEPS0_)
    target_link_options(vesk_binder_ndk PRIVATE -Wl,--defsym,${function}=0)
endforeach()
