# Fuzz targets: programs around LLVMFuzzerTestOneInput(). With VARNEL_FUZZ they are libFuzzer programs, which
# tests/fuzz builds and runs; otherwise each replays its seeds as a test.
include_guard(GLOBAL)
option(VARNEL_FUZZ "Build the fuzz targets for fuzzing (clang only)" OFF)
if(VARNEL_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "VARNEL_FUZZ needs clang: configure with -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang")
endif()

# fuzzed_library(<target>): lets the fuzzer see which of its code an input reaches.
function(fuzzed_library target)
    if(VARNEL_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()

# fuzz_target(<name> SUITE <name> SOURCES <files> LIBRARIES <targets>)
# The program fuzz_<name>. Its seeds are the files in seeds/<name>, beside the CMakeLists.txt that calls this.
function(fuzz_target name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SUITE" "SOURCES;LIBRARIES")
    set(program fuzz_${name})
    set(seeds ${CMAKE_CURRENT_SOURCE_DIR}/seeds/${name})
    add_executable(${program} ${arg_SOURCES})
    target_link_libraries(${program} PRIVATE ${arg_LIBRARIES} project_warnings)
    if(VARNEL_FUZZ)
        target_link_options(${program} PRIVATE -fsanitize=fuzzer)
        fuzzed_library(${program})
        note_for_fuzzing(${name} ${seeds})
    else()
        target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/fuzz_replay.cpp)
        add_test(NAME ${arg_SUITE}.${program}_seeds COMMAND ${program} ${seeds})
        set_tests_properties(${arg_SUITE}.${program}_seeds PROPERTIES LABELS ${arg_SUITE} TIMEOUT 120)
    endif()
endfunction()

# Tells tests/fuzz of a target: in the CMake target fuzz_targets, and by a line with its name and its seeds.
function(note_for_fuzzing name seeds)
    if(NOT TARGET fuzz_targets)
        add_custom_target(fuzz_targets)
    endif()
    add_dependencies(fuzz_targets fuzz_${name})
    set_property(GLOBAL APPEND_STRING PROPERTY FUZZ_TARGETS "${name} ${seeds}\n")
    get_property(all GLOBAL PROPERTY FUZZ_TARGETS)
    file(WRITE ${PROJECT_BINARY_DIR}/fuzz_targets.txt "${all}")
endfunction()
