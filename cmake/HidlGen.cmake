# C++ headers of HIDL packages, generated at build time by Debian's hidl-gen.
find_program(HIDL_GEN hidl-gen REQUIRED)

# hidl_gen_headers(TARGET name PACKAGES fq-package... OUTPUT_DIR dir ROOTS root:path...
#                  HALS file... HEADERS relative-output...)
#
# The packages are generated one after the other by one command, the only producer of every
# header below OUTPUT_DIR: hidl-gen runs started side by side by a parallel build make the same
# folders at once, and one of them fails.
function(hidl_gen_headers)
    cmake_parse_arguments(ARG "" "TARGET;OUTPUT_DIR" "PACKAGES;ROOTS;HALS;HEADERS" ${ARGN})
    set(root_args)
    foreach(root IN LISTS ARG_ROOTS)
        list(APPEND root_args -r ${root})
    endforeach()
    set(commands)
    foreach(package IN LISTS ARG_PACKAGES)
        list(APPEND commands COMMAND ${HIDL_GEN} -o ${ARG_OUTPUT_DIR} -L c++-headers ${root_args}
             ${package})
    endforeach()
    list(TRANSFORM ARG_HEADERS PREPEND ${ARG_OUTPUT_DIR}/)
    add_custom_command(
        OUTPUT ${ARG_HEADERS}
        ${commands}
        DEPENDS ${ARG_HALS}
        COMMENT "hidl-gen c++-headers ${ARG_PACKAGES}"
        VERBATIM)
    add_custom_target(${ARG_TARGET} DEPENDS ${ARG_HEADERS})
endfunction()
