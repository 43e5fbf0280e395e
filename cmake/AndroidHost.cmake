# Debian's Android platform libraries: headers under /usr/include/android, libraries in the
# multiarch android/ folder, no pkg-config files. Both are searched for, not named, so that a
# cross build finds them in its sysroot.
find_path(ANDROID_HOST_INCLUDE_DIR utils/RefBase.h PATHS /usr/include/android REQUIRED
          NO_DEFAULT_PATH)
find_library(ANDROID_LIBLOG log PATH_SUFFIXES android REQUIRED NO_DEFAULT_PATH
             PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
find_library(ANDROID_LIBUTILS utils PATH_SUFFIXES android REQUIRED NO_DEFAULT_PATH
             PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
find_library(ANDROID_LIBCUTILS cutils PATH_SUFFIXES android REQUIRED NO_DEFAULT_PATH
             PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
get_filename_component(ANDROID_HOST_LIB_DIR ${ANDROID_LIBLOG} DIRECTORY)

add_library(android_log SHARED IMPORTED GLOBAL)
set_target_properties(android_log PROPERTIES IMPORTED_LOCATION ${ANDROID_LIBLOG}
                      INTERFACE_INCLUDE_DIRECTORIES ${ANDROID_HOST_INCLUDE_DIR})
# Only native_handle_* is used of it: its libcutils has no property functions (the host platform
# provides them).
add_library(android_cutils SHARED IMPORTED GLOBAL)
set_target_properties(android_cutils PROPERTIES IMPORTED_LOCATION ${ANDROID_LIBCUTILS}
                      INTERFACE_INCLUDE_DIRECTORIES ${ANDROID_HOST_INCLUDE_DIR})
add_library(android_utils SHARED IMPORTED GLOBAL)
set_target_properties(android_utils PROPERTIES IMPORTED_LOCATION ${ANDROID_LIBUTILS}
                      INTERFACE_INCLUDE_DIRECTORIES ${ANDROID_HOST_INCLUDE_DIR})

# Every binary finds the android/ libraries and the project's own libraries at run time.
set(CMAKE_BUILD_RPATH ${ANDROID_HOST_LIB_DIR} ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_INSTALL_RPATH ${ANDROID_HOST_LIB_DIR})
