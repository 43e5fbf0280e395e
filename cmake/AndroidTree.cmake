# The platform's own aidl compiler and binder, built from an Android tree by android/ (a project
# of its own, compiled with clang and libc++ whatever this build's compiler) as external projects.
#
# VESK_ANDROID_TREE (cache): -D, else $VESK_ANDROID_TREE, else ../shared/android13 beside the
# source folder if it is there; without a tree the AIDL parts are skipped. What this defines:
#   VESK_HAVE_ANDROID_TREE       ON when there is a tree
#   vesk::aidl, VESK_AIDL        the tree's aidl (a host program, for every preset)
#   VESK_HAVE_PLATFORM_BINDER    ON when this build has the binder library (host builds)
#   vesk::binder_ndk             libvesk_binder_ndk.so: the NDK API and the registration seam
#                                (vesk/rpc_binder_host.h), include folders and definitions of
#                                the NDK backend's users; VESK_BINDER_NDK_LIBRARY is its path
#   vesk_aidl_ndk_library()      a static library of the NDK backend of .aidl files
# VESK_PLATFORM_TOOLS_DIR (cache) is where they are built, inside the build folder unless
# several build folders share one (scripts/test.sh: built once for all presets).

set(VESK_HAVE_ANDROID_TREE OFF)
set(VESK_HAVE_PLATFORM_BINDER OFF)

if(NOT DEFINED VESK_ANDROID_TREE)
    if(DEFINED ENV{VESK_ANDROID_TREE})
        set(tree "$ENV{VESK_ANDROID_TREE}")
    elseif(IS_DIRECTORY ${PROJECT_SOURCE_DIR}/../shared/android13)
        set(tree ${PROJECT_SOURCE_DIR}/../shared/android13)
    else()
        set(tree "")
    endif()
    if(tree)
        get_filename_component(tree "${tree}" ABSOLUTE BASE_DIR ${PROJECT_SOURCE_DIR})
    endif()
    set(VESK_ANDROID_TREE "${tree}" CACHE PATH
        "Android tree the platform's aidl and binder are built from (empty: none)")
endif()

if(NOT VESK_ANDROID_TREE)
    message(STATUS "AIDL parts skipped: no Android tree (set VESK_ANDROID_TREE, or put one at "
                   "../shared/android13 beside the source folder)")
    return()
endif()
get_filename_component(VESK_ANDROID_TREE "${VESK_ANDROID_TREE}" ABSOLUTE
                       BASE_DIR ${PROJECT_SOURCE_DIR})
foreach(folder system/tools/aidl system/libbase system/logging/liblog system/core/libcutils
               system/core/libutils system/core/libsystem/include
               system/core/libprocessgroup/include frameworks/native/libs/binder
               frameworks/native/libs/binder/ndk bionic/libc/kernel/uapi
               libnativehelper/include_jni)
    if(NOT IS_DIRECTORY ${VESK_ANDROID_TREE}/${folder})
        message(FATAL_ERROR "The Android tree ${VESK_ANDROID_TREE} has no ${folder}, which the "
                            "platform's aidl and binder are built from")
    endif()
endforeach()
set(VESK_HAVE_ANDROID_TREE ON)

find_program(VESK_CLANG clang REQUIRED)
find_program(VESK_CLANGXX clang++ REQUIRED)
set(VESK_PLATFORM_TOOLS_DIR ${CMAKE_BINARY_DIR}/android-tree CACHE PATH
    "Where the platform's aidl and binder are built (may be shared by several build folders)")

include(ExternalProject)

# android_tree_build(NAME BINARY_DIR TARGETS... [ARGS -D...]): one build of android/.
function(android_tree_build name binary_dir)
    cmake_parse_arguments(ARG "" "" "TARGETS;ARGS;BYPRODUCTS;DEPENDS" ${ARGN})
    set(launchers)
    foreach(lang C CXX)
        if(CMAKE_${lang}_COMPILER_LAUNCHER)
            list(APPEND launchers
                 -DCMAKE_${lang}_COMPILER_LAUNCHER=${CMAKE_${lang}_COMPILER_LAUNCHER})
        endif()
    endforeach()
    set(build_targets)
    foreach(target IN LISTS ARG_TARGETS)
        list(APPEND build_targets --target ${target})
    endforeach()
    ExternalProject_Add(${name}
        SOURCE_DIR ${PROJECT_SOURCE_DIR}/android
        BINARY_DIR ${binary_dir}
        PREFIX ${CMAKE_BINARY_DIR}/android-tree-steps/${name}
        CMAKE_ARGS -DCMAKE_C_COMPILER=${VESK_CLANG} -DCMAKE_CXX_COMPILER=${VESK_CLANGXX}
                   -DVESK_ANDROID_TREE=${VESK_ANDROID_TREE} ${launchers} ${ARG_ARGS}
        BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> ${build_targets}
        # The sources are the tree's and android/'s: ninja in the build folder knows what changed.
        BUILD_ALWAYS ON
        INSTALL_COMMAND ""
        BUILD_BYPRODUCTS ${ARG_BYPRODUCTS}
        DEPENDS ${ARG_DEPENDS})
endfunction()

# Cross builds generate code on the host with the host's aidl; the binder library is built for
# the host only (README: what a cross build of it would cost).
set(host_dir ${VESK_PLATFORM_TOOLS_DIR}/host)
set(VESK_AIDL ${host_dir}/bin/aidl)
set(host_targets aidl)
set(host_byproducts ${VESK_AIDL})
if(NOT CMAKE_CROSSCOMPILING)
    set(VESK_HAVE_PLATFORM_BINDER ON)
    set(VESK_BINDER_NDK_LIBRARY ${host_dir}/lib/libvesk_binder_ndk.so)
    # ThreadSanitizer sees the synchronisation of code it instruments only: the binder's
    # reference counts and hand-offs between its threads and the program's would show as races.
    if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=[^ ]*thread")
        set(binder_dir ${VESK_PLATFORM_TOOLS_DIR}/tsan)
        set(VESK_BINDER_NDK_LIBRARY ${binder_dir}/lib/libvesk_binder_ndk.so)
    else()
        list(APPEND host_targets vesk_binder_ndk)
        list(APPEND host_byproducts ${VESK_BINDER_NDK_LIBRARY})
    endif()
else()
    message(STATUS "Platform binder skipped: it is built for the host only, this build is for "
                   "${CMAKE_SYSTEM_PROCESSOR}")
endif()
android_tree_build(android_tree_host ${host_dir} TARGETS ${host_targets}
                   BYPRODUCTS ${host_byproducts})
if(binder_dir)
    android_tree_build(android_tree_tsan ${binder_dir} TARGETS vesk_binder_ndk
                       ARGS -DVESK_AIDL=${VESK_AIDL} -DVESK_SANITIZE=thread
                       BYPRODUCTS ${VESK_BINDER_NDK_LIBRARY} DEPENDS android_tree_host)
    set(binder_step android_tree_tsan)
else()
    set(binder_step android_tree_host)
endif()

add_executable(vesk::aidl IMPORTED GLOBAL)
set_target_properties(vesk::aidl PROPERTIES IMPORTED_LOCATION ${VESK_AIDL})
add_dependencies(vesk::aidl android_tree_host)

if(VESK_HAVE_PLATFORM_BINDER)
    set(ndk ${VESK_ANDROID_TREE}/frameworks/native/libs/binder/ndk)
    add_library(vesk::binder_ndk SHARED IMPORTED GLOBAL)
    set_target_properties(vesk::binder_ndk PROPERTIES
        IMPORTED_LOCATION ${VESK_BINDER_NDK_LIBRARY}
        IMPORTED_SONAME libvesk_binder_ndk.so
        # What aidl_interface gives platform and vendor code of a stable interface.
        INTERFACE_COMPILE_DEFINITIONS BINDER_STABILITY_SUPPORT
        # Before anything else in each unit: on glibc, binder_status.h defines an __assert of
        # its own that breaks a later <assert.h>, and binder_auto_utils.h calls strerror without
        # <string.h>, which libc++ brings along and libstdc++ does not. Generated code included.
        INTERFACE_COMPILE_OPTIONS "SHELL:-include assert.h;SHELL:-include string.h")
    target_include_directories(vesk::binder_ndk INTERFACE ${PROJECT_SOURCE_DIR}/android/include)
    target_include_directories(vesk::binder_ndk SYSTEM INTERFACE
        ${ndk}/include_ndk ${ndk}/include_platform ${ndk}/include_cpp)
    add_dependencies(vesk::binder_ndk ${binder_step})
    get_filename_component(binder_lib_dir ${VESK_BINDER_NDK_LIBRARY} DIRECTORY)
    list(APPEND CMAKE_BUILD_RPATH ${binder_lib_dir})
endif()

# vesk_aidl_ndk_library(NAME ROOT root FILES file.aidl... [STABILITY vintf] [VERSION n HASH h])
#
# A static library of the NDK backend of FILES (paths below ROOT, the import root), made by the
# tree's aidl into the build folder and compiled by this build's compiler; its users get the
# generated headers (<aidl/PACKAGE/IName.h>) and libvesk_binder_ndk.
function(vesk_aidl_ndk_library name)
    cmake_parse_arguments(ARG "" "ROOT;STABILITY;VERSION;HASH" "FILES" ${ARGN})
    set(out ${CMAKE_CURRENT_BINARY_DIR}/${name}-ndk)
    set(sources)
    set(headers)
    set(options --lang=ndk --structured -I ${ARG_ROOT} -o ${out}/src -h ${out}/include)
    if(ARG_STABILITY)
        list(APPEND options --stability=${ARG_STABILITY})
    endif()
    if(ARG_VERSION)
        list(APPEND options --version=${ARG_VERSION} --hash=${ARG_HASH})
    endif()
    foreach(file IN LISTS ARG_FILES)
        cmake_path(RELATIVE_PATH file BASE_DIRECTORY ${ARG_ROOT} OUTPUT_VARIABLE relative)
        cmake_path(REMOVE_EXTENSION relative LAST_ONLY OUTPUT_VARIABLE stem)
        cmake_path(GET stem PARENT_PATH package)
        cmake_path(GET stem FILENAME type)
        string(REGEX REPLACE "^I([A-Z])" "\\1" base ${type})
        list(APPEND sources ${out}/src/${stem}.cpp)
        list(APPEND headers ${out}/include/aidl/${stem}.h
             ${out}/include/aidl/${package}/Bn${base}.h ${out}/include/aidl/${package}/Bp${base}.h)
    endforeach()
    add_custom_command(
        OUTPUT ${sources} ${headers}
        COMMAND vesk::aidl ${options} ${ARG_FILES}
        DEPENDS ${VESK_AIDL} ${ARG_FILES}
        COMMENT "aidl --lang=ndk ${name}"
        VERBATIM)
    add_library(${name} STATIC ${sources} ${headers})
    target_include_directories(${name} PUBLIC ${out}/include)
    target_link_libraries(${name} PUBLIC vesk::binder_ndk)
endfunction()
