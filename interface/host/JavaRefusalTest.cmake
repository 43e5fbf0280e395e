# hidl-gen -L java refuses an interface that Java bindings cannot express, while the same package
# is valid HIDL (-L check passes) and generates Java without it.
#   cmake -DHIDL_GEN=path -DPACKAGE=interface/veskdevicemanager/1.0 -DANDROID_HIDL=path -DWORK=dir
#         -P JavaRefusalTest.cmake
cmake_minimum_required(VERSION 3.25)

# A copy of the package's .hal files (no current.txt: the copy is not frozen, so it may grow
# an interface) with IJavaProbe holding one method that takes ARGUMENT, or none.
function(run_probe name argument language out_status out_error)
    set(root ${WORK}/${name})
    file(REMOVE_RECURSE ${root})
    file(GLOB hals ${PACKAGE}/*.hal)
    file(COPY ${hals} DESTINATION ${root}/veskdevicemanager/1.0)
    if(argument)
        file(WRITE ${root}/veskdevicemanager/1.0/IJavaProbe.hal
            "package vesk.hardware.veskdevicemanager@1.0;\n"
            "interface IJavaProbe {\n    probe(${argument} value) generates (int32_t ret);\n};\n")
    endif()
    execute_process(
        COMMAND ${HIDL_GEN} -o ${root}/out -L ${language}
            -r vesk.hardware:${root} -r android.hidl:${ANDROID_HIDL}
            vesk.hardware.veskdevicemanager@1.0
        RESULT_VARIABLE status ERROR_VARIABLE error OUTPUT_QUIET)
    set(${out_status} ${status} PARENT_SCOPE)
    set(${out_error} "${error}" PARENT_SCOPE)
endfunction()

run_probe(plain "" java status error)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "the package without a probe does not generate Java: ${error}")
endif()

# Several blocks at once, and shared memory: both C++ only.
foreach(argument "vec<vec<uint8_t>>" "memory")
    string(MAKE_C_IDENTIFIER "${argument}" name)
    run_probe(${name} "${argument}" check status error)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "a ${argument} argument is not valid HIDL here: ${error}")
    endif()
    run_probe(${name} "${argument}" java status error)
    if(status EQUAL 0)
        message(FATAL_ERROR "hidl-gen -L java accepted a ${argument} argument")
    endif()
    if(NOT error MATCHES "is not Java compatible")
        message(FATAL_ERROR "hidl-gen -L java failed for another reason: ${error}")
    endif()
    message(STATUS "refused for Java: ${argument}")
endforeach()
