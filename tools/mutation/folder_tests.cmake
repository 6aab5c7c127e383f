# The programs that tools/mutate builds and runs, read by tests/unit/CMakeLists.txt where VARDEL_FOLDER_TESTS is set:
# unit_tests_FOLDER with the tests that mirror one engine folder and no library above it, and unit_tests_all with
# every unit test, out of the same objects. The literal twins take long to build and to run: only unit_tests_all has
# them.

# What the engine's sources parse again and again.
set(ENGINE_HEADERS
    <algorithm> <array> <atomic> <bit> <chrono> <cstring> <deque> <filesystem> <functional> <map> <memory> <mutex>
    <new> <optional> <random> <string> <thread> <utility> <vector>)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp "")
add_library(engine_precompiled OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
target_link_libraries(engine_precompiled PRIVATE vardel_rules)
target_precompile_headers(engine_precompiled PRIVATE ${ENGINE_HEADERS})
foreach(folder platform foundation settings capture watchers frame)
    target_precompile_headers(vardel_${folder} REUSE_FROM engine_precompiled)
endforeach()
# Sources with an optimiser level of their own: the compiler breaks down over a header precompiled at another.
set_source_files_properties(
    ${CMAKE_SOURCE_DIR}/foundation/BlowfishCipher.cpp ${CMAKE_SOURCE_DIR}/foundation/TcBlowfish.cpp
    TARGET_DIRECTORY vardel_foundation PROPERTIES SKIP_PRECOMPILE_HEADERS ON)

add_library(tests_precompiled OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
target_link_libraries(tests_precompiled PRIVATE vardel_rules gtest gmock)
target_compile_options(tests_precompiled PRIVATE -O0)
target_precompile_headers(tests_precompiled PRIVATE <gtest/gtest.h> ${ENGINE_HEADERS})

function(test_objects name kind)
    add_library(${name} ${kind} ${ARGN})
    target_link_libraries(${name} PRIVATE vardel_rules gtest gmock)
    target_compile_options(${name} PRIVATE -O0)
    target_precompile_headers(${name} REUSE_FROM tests_precompiled)
endfunction()

set(TWIN_TEST "/[A-Za-z]*TwinTest")
set(ALL_OBJECTS)
foreach(folder capture foundation frame platform settings watchers)
    set(sources ${UNIT_TESTS})
    list(FILTER sources INCLUDE REGEX "^${folder}/")
    list(FILTER sources EXCLUDE REGEX ${TWIN_TEST})
    test_objects(tests_of_${folder} OBJECT ${sources})
    list(APPEND ALL_OBJECTS $<TARGET_OBJECTS:tests_of_${folder}>)
endforeach()

set(twins ${UNIT_TESTS})
list(FILTER twins INCLUDE REGEX "${TWIN_TEST}|^support/(Literal|Twins)")
test_objects(tests_twins OBJECT ${twins})
list(APPEND ALL_OBJECTS $<TARGET_OBJECTS:tests_twins>)

set(support ${UNIT_TESTS} support/SampleBytes.cpp support/OwnDataFolder_${VARDEL_OS}.cpp)
list(FILTER support INCLUDE REGEX "^support/")
list(FILTER support EXCLUDE REGEX "/(Literal|Twins)")
test_objects(tests_support STATIC ${support})

# folder_program(NAME OBJECTS LIBRARIES...)
function(folder_program name objects)
    add_executable(${name} ${objects})
    target_link_libraries(${name} PRIVATE ${ARGN} gtest_main gmock)
endfunction()

folder_program(unit_tests_foundation $<TARGET_OBJECTS:tests_of_foundation> tests_support vardel_foundation)
folder_program(unit_tests_settings $<TARGET_OBJECTS:tests_of_settings> tests_support vardel_settings)
folder_program(unit_tests_capture $<TARGET_OBJECTS:tests_of_capture> tests_support vardel_watchers)
folder_program(unit_tests_watchers $<TARGET_OBJECTS:tests_of_watchers> tests_support vardel_watchers)
folder_program(unit_tests_all "${ALL_OBJECTS}" tests_support vardel_frame)
