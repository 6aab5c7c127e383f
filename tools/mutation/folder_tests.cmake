# The programs that tools/mutate builds and runs, read by tests/unit/CMakeLists.txt where VARDEL_FOLDER_TESTS is set:
# unit_tests_FOLDER with the tests that mirror one engine folder and no library above it, and unit_tests_all with
# every unit test, out of the same objects. The literal twins take long to build and to run: only unit_tests_all has
# them.
get_target_property(test_sources unit_tests SOURCES)
get_target_property(test_libraries unit_tests LINK_LIBRARIES)
get_target_property(test_needs unit_tests MANUALLY_ADDED_DEPENDENCIES)

# What the engine's sources parse again and again.
set(ENGINE_HEADERS
    <algorithm> <array> <atomic> <bit> <chrono> <cstring> <deque> <filesystem> <functional> <map> <memory> <mutex>
    <new> <optional> <random> <string> <thread> <utility> <vector>)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp "")
add_library(engine_precompiled OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
target_link_libraries(engine_precompiled PRIVATE vardel_rules)
target_precompile_headers(engine_precompiled PRIVATE ${ENGINE_HEADERS})
foreach(folder platform foundation settings toolkit plugins capture watchers updates views frame)
    if(TARGET vardel_${folder})
        target_precompile_headers(vardel_${folder} REUSE_FROM engine_precompiled)
    endif()
endforeach()
# Sources with an optimiser level of their own: the compiler breaks down over a header precompiled at another.
set_source_files_properties(
    ${CMAKE_SOURCE_DIR}/foundation/BlowfishCipher.cpp ${CMAKE_SOURCE_DIR}/foundation/TcBlowfish.cpp
    TARGET_DIRECTORY vardel_foundation PROPERTIES SKIP_PRECOMPILE_HEADERS ON)

add_library(tests_precompiled OBJECT ${CMAKE_CURRENT_BINARY_DIR}/precompiled.cpp)
target_link_libraries(tests_precompiled PRIVATE vardel_rules gtest gmock)
target_compile_options(tests_precompiled PRIVATE -O0)
target_precompile_headers(tests_precompiled PRIVATE <gtest/gtest.h> ${ENGINE_HEADERS})

# test_objects(NAME KIND PATTERN LEFT_OUT): the test sources of a pattern, but for those of another.
function(test_objects name kind pattern left_out)
    set(sources ${test_sources})
    list(FILTER sources INCLUDE REGEX ${pattern})
    list(FILTER sources EXCLUDE REGEX ${left_out})
    add_library(${name} ${kind} ${sources})
    target_link_libraries(${name} PRIVATE vardel_rules gtest gmock)
    target_compile_options(${name} PRIVATE -O0)
    target_precompile_headers(${name} REUSE_FROM tests_precompiled)
endfunction()

set(TWINS "^[a-z]+/[A-Za-z]*TwinTest|^support/Literal|^support/Twins")
set(MIRRORED capture foundation frame settings toolkit views watchers)
foreach(folder ${MIRRORED})
    test_objects(tests_of_${folder} OBJECT "^${folder}/" ${TWINS})
endforeach()
test_objects(tests_twins OBJECT ${TWINS} "^$")
test_objects(tests_support STATIC "^support/" ${TWINS})
string(REPLACE ";" "|" mirrored_or_support "${MIRRORED};support")
test_objects(tests_of_others OBJECT "^[a-z]+/" "^(${mirrored_or_support})/|${TWINS}")

# folder_program(NAME OBJECTS LIBRARIES...)
function(folder_program name objects)
    add_executable(${name} ${objects})
    target_link_libraries(${name} PRIVATE tests_support ${ARGN} gtest_main gmock)
    if(test_needs)
        add_dependencies(${name} ${test_needs})
    endif()
endfunction()

folder_program(unit_tests_foundation $<TARGET_OBJECTS:tests_of_foundation> vardel_foundation)
folder_program(unit_tests_settings $<TARGET_OBJECTS:tests_of_settings> vardel_settings)
folder_program(unit_tests_toolkit $<TARGET_OBJECTS:tests_of_toolkit> vardel_toolkit)
folder_program(unit_tests_capture $<TARGET_OBJECTS:tests_of_capture> vardel_watchers)
folder_program(unit_tests_watchers $<TARGET_OBJECTS:tests_of_watchers> vardel_watchers)
folder_program(unit_tests_views $<TARGET_OBJECTS:tests_of_views> vardel_views vardel_watchers)
folder_program(unit_tests_frame $<TARGET_OBJECTS:tests_of_frame> vardel_frame vardel_watchers)
set(all_objects $<TARGET_OBJECTS:tests_of_others> $<TARGET_OBJECTS:tests_twins>)
foreach(folder ${MIRRORED})
    list(APPEND all_objects $<TARGET_OBJECTS:tests_of_${folder}>)
endforeach()
folder_program(unit_tests_all "${all_objects}" ${test_libraries})
