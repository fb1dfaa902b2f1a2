# Every library, program and test of the project takes its flags from here, so that what decides bits stands once.

option(TAVRIK_WERROR "Treat warnings as errors" ON)

add_library(tavrik_flags INTERFACE)
target_compile_features(tavrik_flags INTERFACE cxx_std_20)
target_compile_options(
    tavrik_flags
    INTERFACE
        # A fused multiply-add rounds once where the source rounds twice: recordings would depend on the compiler.
        -ffp-contract=off
        # Nobody replaces a function of a shared library from outside, so calls within it may be inlined.
        -fno-semantic-interposition
        # Nobody reads errno after a square root, and without it the root is one instruction.
        -fno-math-errno
        # Angles go to the C library at run time: a compiler that works out, or pairs, sines by itself may round another way.
        -fno-builtin-sin -fno-builtin-cos -fno-builtin-tan)

add_library(tavrik_warnings INTERFACE)
target_compile_options(
    tavrik_warnings
    INTERFACE
        -Wall
        -Wextra
        -Wpedantic
        # Clang 14 takes an enumerator that goes by the name of a function for a shadow of it.
        $<$<CXX_COMPILER_ID:GNU>:-Wshadow>
        -Wnon-virtual-dtor
        # Narrowing is part of the model, so each one has to be written out.
        -Wconversion
        -Wsign-conversion
        -Wdouble-promotion
        # GCC 12 sees overlapping copies in std::string's own operator+ (its bug 105651).
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        $<$<BOOL:${TAVRIK_WERROR}>:-Werror>)

# What static and shared libraries have in common.
function(tavrik_library_of_type type name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LINKS" ${ARGN})
    add_library(${name} ${type})
    target_sources(
        ${name}
        PRIVATE ${ARG_SOURCES}
        PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
    target_link_libraries(${name} PUBLIC tavrik_flags ${ARG_LINKS} PRIVATE tavrik_warnings)
    # Each header compiles alone: `cmake --build ... --target all_verify_interface_header_sets`.
    # A static library may end up in a shared one too, hence position-independent code everywhere.
    set_target_properties(
        ${name}
        PROPERTIES CXX_EXTENSIONS OFF
                   VERIFY_INTERFACE_HEADER_SETS ON
                   POSITION_INDEPENDENT_CODE ON)
endfunction()

# tavrik_library(<name> SOURCES <.cpp>... HEADERS <.h>... LINKS <libraries>...)
function(tavrik_library name)
    tavrik_library_of_type(STATIC ${name} ${ARGN})
    # Whichever shared library takes this one in keeps it to itself, so that two copies in a process never mix, and no call or
    # variable takes the detour by way of the dynamic linker.
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# tavrik_shared_library(<name> SOURCES <.cpp>... HEADERS <.h>... LINKS <libraries>...): all its names are visible from outside.
function(tavrik_shared_library name)
    tavrik_library_of_type(SHARED ${name} ${ARGN})
endfunction()

# tavrik_program(<name> SOURCES <.cpp>... LINKS <libraries>...)
function(tavrik_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE tavrik_flags tavrik_warnings ${ARG_LINKS})
    set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()

# tavrik_test(<name> SOURCES <.cpp>... LINKS <libraries>...): one GoogleTest program; each TEST is one line of ctest.
function(tavrik_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    tavrik_program(${name} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} tavrik_test_support GTest::gtest_main)
    gtest_discover_tests(
        ${name}
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT 600)
endfunction()

# tavrik_benchmark(<name> SOURCES <.cpp>... LINKS <libraries>...)
function(tavrik_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    tavrik_program(${name} SOURCES ${ARG_SOURCES} LINKS ${ARG_LINKS} benchmark::benchmark_main)
endfunction()
