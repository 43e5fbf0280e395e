# C++ headers of a HIDL package, generated at build time by Debian's hidl-gen.
find_program(HIDL_GEN hidl-gen REQUIRED)

# hidl_gen_headers(TARGET name PACKAGE fq-package OUTPUT_DIR dir ROOTS root:path... HALS file...
#                  HEADERS relative-output...)
function(hidl_gen_headers)
    cmake_parse_arguments(ARG "" "TARGET;PACKAGE;OUTPUT_DIR" "ROOTS;HALS;HEADERS" ${ARGN})
    set(root_args)
    foreach(root IN LISTS ARG_ROOTS)
        list(APPEND root_args -r ${root})
    endforeach()
    list(TRANSFORM ARG_HEADERS PREPEND ${ARG_OUTPUT_DIR}/)
    add_custom_command(
        OUTPUT ${ARG_HEADERS}
        COMMAND ${HIDL_GEN} -o ${ARG_OUTPUT_DIR} -L c++-headers ${root_args} ${ARG_PACKAGE}
        DEPENDS ${ARG_HALS}
        COMMENT "hidl-gen c++-headers ${ARG_PACKAGE}"
        VERBATIM)
    add_custom_target(${ARG_TARGET} DEPENDS ${ARG_HEADERS})
endfunction()
