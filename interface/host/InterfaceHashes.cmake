# Writes the interface hashes that the device's generated sources compile into getHashChain():
# hidl-gen's hash of each .hal file as it is built, as one C string per interface.
#   cmake -DHIDL_GEN=path -DROOTS="root:path;..." -DOUTPUT=file -P InterfaceHashes.cmake
cmake_minimum_required(VERSION 3.25)
set(root_args)
foreach(root IN LISTS ROOTS)
    list(APPEND root_args -r ${root})
endforeach()
set(interfaces
    android.hidl.base@1.0::IBase
    vesk.hardware.veskdevicemanager@1.0::IVeskDeviceManager
    vesk.hardware.veskdevicemanager@1.0::IVeskDeviceCallback)
execute_process(COMMAND ${HIDL_GEN} -L hash ${root_args} ${interfaces}
    OUTPUT_VARIABLE hashes RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "hidl-gen -L hash failed (${status})")
endif()
set(body "// Made by hidl-gen -L hash at build time; do not edit.\n#pragma once\n")
foreach(interface IN LISTS interfaces)
    string(REGEX MATCH "([0-9a-f]+) ${interface}\n" line "${hashes}")
    set(hash "${CMAKE_MATCH_1}")
    if(NOT hash MATCHES "^[0-9a-f]+$")
        message(FATAL_ERROR "hidl-gen printed no hash for ${interface}")
    endif()
    string(REGEX REPLACE ".*::" "" name "${interface}")
    string(TOUPPER "${name}" name)
    string(APPEND body "#define VESK_HASH_${name} \"${hash}\"\n")
endforeach()
file(WRITE ${OUTPUT}.tmp "${body}")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
