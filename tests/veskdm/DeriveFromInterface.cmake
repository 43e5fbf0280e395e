# Derives test doubles of IVeskDeviceManager from its generated header, so that they follow the
# interface without a hand-kept copy of its 162 methods.
#   cmake -DINPUT=IVeskDeviceManager.h -DOUTPUT=file -DKIND=mock|recorder -P DeriveFromInterface.cmake
# mock:     one gmock MOCK_METHOD per method (the body of a class deriving from the interface);
# recorder: one override per method that calls record("name") and returns a zero value.
cmake_minimum_required(VERSION 3.25)
file(READ ${INPUT} content)
string(REGEX MATCHALL
    "virtual ::android::hardware::Return<[a-z0-9_]+> [A-Za-z0-9_]+\\([^)]*\\) = 0"
    declarations "${content}")
set(body "")
foreach(declaration IN LISTS declarations)
    string(REGEX REPLACE
        "virtual (::android::hardware::Return<[a-z0-9_]+>) ([A-Za-z0-9_]+)\\(([^)]*)\\) = 0"
        "\\1;\\2;\\3" parts "${declaration}")
    list(GET parts 0 result)
    list(GET parts 1 name)
    list(LENGTH parts count)
    set(parameters "")
    if(count GREATER 2)
        list(GET parts 2 parameters)
    endif()
    if(KIND STREQUAL "mock")
        string(APPEND body "    MOCK_METHOD(${result}, ${name}, (${parameters}), (override));\n")
    else()
        string(APPEND body "    ${result} ${name}(${parameters}) override {\n"
                           "        record(\"${name}\");\n"
                           "        return zeroResult<${result}>();\n"
                           "    }\n")
    endif()
endforeach()
file(WRITE ${OUTPUT}.tmp "// Derived from the generated IVeskDeviceManager.h; do not edit.\n${body}")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
