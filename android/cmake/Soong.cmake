# The flags Soong gives every module of an Android 13 tree built for a Linux (glibc, x86_64) host
# (build/soong/cc/config/global.go and x86_linux_host.go of the tree), less those that only steer
# Soong's own prebuilt toolchain (--gcc-toolchain, --sysroot, -nostdlibinc, prefix maps), and the
# reader of a module's own sources and flags from its Android.bp.

set(SOONG_GLOBAL_CFLAGS
    -DANDROID -fmessage-length=0 -W -Wall -Wno-unused -Winit-self -Wpointer-arith
    -Wunreachable-code-loop-increment -DNDEBUG -UDEBUG -fno-exceptions -Wno-multichar -O2 -g
    -fno-strict-aliasing -Werror=date-time -Werror=pragma-pack
    -Werror=pragma-pack-suspicious-include -Werror=string-plus-int
    -Werror=unreachable-code-loop-increment -D__compiler_offsetof=__builtin_offsetof -faddrsig
    -fcommon -Werror=int-conversion -Wno-reserved-id-macro -Wno-sign-compare
    -Wno-defaulted-function-deleted -Wno-inconsistent-missing-override -Wno-c99-designator
    -Wno-gnu-designator -Wno-gnu-folding-constant -Wunguarded-availability
    -D__ANDROID_UNAVAILABLE_SYMBOLS_ARE_WEAK__ -ffp-contract=off
    # Locals are zero-initialised: code of the tree relies on it (a member the aidl compiler
    # leaves unset is null on the platform's own binary).
    -ftrivial-auto-var-init=zero
    -enable-trivial-auto-var-init-zero-knowing-it-will-be-removed-from-clang
    # linuxCflags, linuxX8664Cflags
    -Wa,--noexecstack -fPIC -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector
    -D__STDC_FORMAT_MACROS -D__STDC_CONSTANT_MACROS -fstack-protector-strong)
# noOverrideGlobalCflags: after the module's own flags, which cannot turn them off.
set(SOONG_NO_OVERRIDE_CFLAGS
    -Werror=bool-operation -Werror=implicit-int-float-conversion -Werror=int-in-bool-context
    -Werror=int-to-pointer-cast -Werror=pointer-to-int-cast -Werror=string-compare
    -Werror=xor-used-as-pow -Wno-void-pointer-to-enum-cast -Wno-void-pointer-to-int-cast
    -Wno-pointer-to-int-cast -Werror=fortify-source -Werror=address-of-temporary
    -Werror=return-type -Wno-tautological-constant-compare -Wno-tautological-type-limit-compare
    -Wno-reorder-init-list -Wno-implicit-int-float-conversion -Wno-sizeof-array-div
    -Wno-tautological-overlap-compare -Wno-deprecated-copy -Wno-range-loop-construct
    -Wno-misleading-indentation -Wno-zero-as-null-pointer-constant
    -Wno-deprecated-anon-enum-enum-conversion -Wno-string-compare -Wno-pessimizing-move
    -Wno-non-c-typedef-for-linkage -Wno-align-mismatch -Wno-error=unused-but-set-variable
    -Wno-error=unused-but-set-parameter)
set(SOONG_GLOBAL_CPPFLAGS
    -std=gnu++17 -stdlib=libc++ -Wsign-promo -Wimplicit-fallthrough
    -D_LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS -Wno-gnu-include-next)
set(SOONG_GLOBAL_CONLYFLAGS -std=gnu99)
# linuxLdflags, hostGlobalLldflags
set(SOONG_GLOBAL_LDFLAGS
    -fuse-ld=lld -Wl,-z,noexecstack -Wl,-z,relro -Wl,-z,now -Wl,--no-undefined-version
    -Wl,--build-id=md5)
# libc++ inside each binary: it needs nothing at run time, and a library made of this code shows
# no C++ runtime to the process that loads it.
set(SOONG_STATIC_LIBCXX -nostdlib++ -Wl,--push-state,-Bstatic -lc++ -lc++abi -Wl,--pop-state
    -pthread)

# Soong's global include folders (commonGlobalIncludes): system/core/include of a full tree is
# links into these folders, which this tree has without the links.
set(SOONG_GLOBAL_INCLUDES
    ${VESK_ANDROID_TREE}/system/core/libcutils/include
    ${VESK_ANDROID_TREE}/system/core/libutils/include
    ${VESK_ANDROID_TREE}/system/core/libsystem/include
    ${VESK_ANDROID_TREE}/system/logging/liblog/include)

find_package(Python3 REQUIRED COMPONENTS Interpreter)

# android_bp_module(PREFIX BP_FOLDER MODULE): reads the host variant of MODULE from the
# Android.bp of BP_FOLDER (a folder of the tree) into PREFIX_SOURCES, PREFIX_CFLAGS, ... (see
# scripts/android_bp_sources.py); configure runs again when that Android.bp changes.
function(android_bp_module prefix folder module)
    set(bp ${VESK_ANDROID_TREE}/${folder}/Android.bp)
    execute_process(
        COMMAND ${Python3_EXECUTABLE} ${VESK_SOURCE_DIR}/scripts/android_bp_sources.py
                --platform-sdk-version ${VESK_PLATFORM_SDK_VERSION} ${bp} ${module} ${prefix}
        OUTPUT_VARIABLE code
        RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "cannot read ${module} from ${bp}")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${bp})
    cmake_language(EVAL CODE "${code}")
    foreach(key SOURCES AIDL AIDL_ROOTS CFLAGS CPPFLAGS CONLYFLAGS INCLUDES)
        set(${prefix}_${key} ${${prefix}_${key}} PARENT_SCOPE)
    endforeach()
endfunction()

# soong_flags(TARGET PREFIX): Soong's global flags, the module's own (read by
# android_bp_module), then those no module overrides, as Soong orders them.
function(soong_flags target prefix)
    target_compile_options(${target} PRIVATE
        ${SOONG_GLOBAL_CFLAGS} ${${prefix}_CFLAGS}
        $<$<COMPILE_LANGUAGE:CXX>:${SOONG_GLOBAL_CPPFLAGS} ${${prefix}_CPPFLAGS}>
        $<$<COMPILE_LANGUAGE:C>:${SOONG_GLOBAL_CONLYFLAGS} ${${prefix}_CONLYFLAGS}>
        ${SOONG_NO_OVERRIDE_CFLAGS})
    target_include_directories(${target} PRIVATE ${${prefix}_INCLUDES} ${SOONG_GLOBAL_INCLUDES})
endfunction()
