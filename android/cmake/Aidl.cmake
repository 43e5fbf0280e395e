# The platform's aidl compiler: libaidl-common's sources and main.cpp (system/tools/aidl), its
# parser made by bison and flex, libbase and liblog of the tree, header-only fmt, and gtest
# (aidl_checkapi.cpp compares with gtest's EqHelper) compiled with libc++ too.
find_package(BISON 3 REQUIRED)
find_package(FLEX REQUIRED)
# Debian's fmt, header only, in the compiler's own search path.
find_path(FMT_INCLUDE_DIR fmt/format.h REQUIRED)
find_path(GTEST_SOURCE_DIR src/gtest-all.cc PATHS /usr/src/googletest/googletest REQUIRED
          NO_DEFAULT_PATH)

set(aidl_folder ${VESK_ANDROID_TREE}/system/tools/aidl)
android_bp_module(AIDL_COMMON system/tools/aidl libaidl-common)
android_bp_module(AIDL_MAIN system/tools/aidl aidl)
android_bp_module(AIDL_LIBBASE system/libbase libbase)
android_bp_module(AIDL_LIBLOG system/logging/liblog liblog)

# The parser as Soong's yacc and lex rules make it (the grammar includes aidl_language_y.h).
set(parser_dir ${CMAKE_BINARY_DIR}/aidl-parser)
file(MAKE_DIRECTORY ${parser_dir})
bison_target(aidl_parser ${aidl_folder}/aidl_language_y.yy ${parser_dir}/aidl_language_y.cpp
             COMPILE_FLAGS "-Lc++" DEFINES_FILE ${parser_dir}/aidl_language_y.h)
flex_target(aidl_lexer ${aidl_folder}/aidl_language_l.ll ${parser_dir}/aidl_language_l.cpp)
add_flex_bison_dependency(aidl_lexer aidl_parser)
list(FILTER AIDL_COMMON_SOURCES EXCLUDE REGEX "\\.(ll|yy)$")

set(aidl_includes ${aidl_folder} ${parser_dir} ${VESK_ANDROID_TREE}/system/libbase/include)

add_library(aidl_gtest STATIC ${GTEST_SOURCE_DIR}/src/gtest-all.cc)
target_include_directories(aidl_gtest PRIVATE ${GTEST_SOURCE_DIR})
target_compile_options(aidl_gtest PRIVATE -std=gnu++17 -stdlib=libc++ -O2 -w)

add_library(aidl_libbase STATIC ${AIDL_LIBBASE_SOURCES})
soong_flags(aidl_libbase AIDL_LIBBASE)
add_library(aidl_liblog STATIC ${AIDL_LIBLOG_SOURCES})
soong_flags(aidl_liblog AIDL_LIBLOG)
add_library(aidl_common STATIC ${AIDL_COMMON_SOURCES} ${BISON_aidl_parser_OUTPUTS}
                               ${FLEX_aidl_lexer_OUTPUTS})
soong_flags(aidl_common AIDL_COMMON)
add_executable(aidl ${AIDL_MAIN_SOURCES})
soong_flags(aidl AIDL_MAIN)
foreach(target aidl_libbase aidl_liblog aidl_common aidl)
    target_include_directories(${target} PRIVATE ${aidl_includes})
    target_compile_definitions(${target} PRIVATE FMT_HEADER_ONLY)
endforeach()
target_link_libraries(aidl PRIVATE aidl_common aidl_libbase aidl_liblog aidl_gtest)
target_link_options(aidl PRIVATE ${SOONG_GLOBAL_LDFLAGS} ${SOONG_STATIC_LIBCXX})
