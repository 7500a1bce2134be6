# SPDX-License-Identifier: GPL-3.0-or-later
# Compiler options of our own targets, as an interface library: what we include is not held to them.
add_library(vantoro_options INTERFACE)
target_compile_options(vantoro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wundef -Werror)
target_include_directories(vantoro_options INTERFACE ${PROJECT_SOURCE_DIR})
# Files read in one go see each other's names; what each shadows by itself the build for debugging tells.
add_library(vantoro_read_in_one_go INTERFACE)
target_compile_options(vantoro_read_in_one_go INTERFACE -Wno-shadow)
if(CMAKE_UNITY_BUILD)
    target_link_libraries(vantoro_options INTERFACE vantoro_read_in_one_go)
endif()

if(VANTORO_SANITIZE)
    add_compile_options(-fsanitize=${VANTORO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VANTORO_SANITIZE})
    # GCC 12 sees uninitialised values in the standard library where a sanitizer watches it.
    add_compile_options(-Wno-maybe-uninitialized)
endif()

# vantoro_library(NAME SOURCES...): a static library of one folder under the house rules.
function(vantoro_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PRIVATE vantoro_options)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# vantoro_module(NAME FILE SOURCE LIBRARIES...): a part of the program that it loads from a file beside it.
function(vantoro_module name file source)
    add_library(${name} MODULE ${source})
    target_link_libraries(${name} PRIVATE vantoro_options ${ARGN})
    target_compile_definitions(${name} PRIVATE VANTORO_VERSION="${PROJECT_VERSION}" QT_NO_KEYWORDS)
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME ${file} LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endfunction()

# vantoro_headers_ahead(TARGET HEADERS...): reads these headers of others once for all of the target's sources, which
# takes longer than all the rest of compiling one. What a source lacks by itself the linter tells, which reads each alone.
function(vantoro_headers_ahead target)
    get_target_property(in_batches ${target} UNITY_BUILD)
    if(NOT in_batches) # there they are read a few times only
        target_precompile_headers(${target} PRIVATE ${ARGN})
    endif()
endfunction()

# vantoro_test(NAME SOURCES... LIBRARIES ... [QT] [LAUNCHER ...] [PROPERTIES ...]): a GoogleTest program, each
# case a test of ctest; QT where it reads Qt's headers, the command that it runs under, properties of its cases.
# Most of the time that a test takes to compile goes into reading the framework's headers, which is done
# once for all, and into optimising what runs for a moment; so files are also read several in one go, but in a build
# for debugging, where one of them is changed at a time.
function(vantoro_test name)
    cmake_parse_arguments(arg "QT" "" "LIBRARIES;LAUNCHER;PROPERTIES" ${ARGN})
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE vantoro_options ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
    target_compile_options(${name} PRIVATE -O0 -fPIC -pthread) # as the headers are
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
        target_link_libraries(${name} PRIVATE vantoro_read_in_one_go)
        set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 16)
    endif()
    if(arg_QT)
        target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
        target_precompile_headers(${name} REUSE_FROM vantoro_qt_test_headers)
    else()
        target_precompile_headers(${name} REUSE_FROM vantoro_test_headers)
    endif()
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${arg_LAUNCHER}")
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120 ${arg_PROPERTIES})
endfunction()

# vantoro_python_tests(PREFIX FILE [SECONDS N] [LAUNCHER...]): each case of a Python test program, a test of ctest.
# The program takes a case's name; a launcher is the command that the program runs under. So many seconds (10)
# the longer ones of the cases take: the longest tests begin first, so that none is left alone at the end.
function(vantoro_python_tests prefix file)
    cmake_parse_arguments(arg "" "SECONDS" "" ${ARGN})
    if(NOT arg_SECONDS)
        set(arg_SECONDS 10)
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} cases REGEX "^    def test_")
    foreach(case IN LISTS cases)
        string(REGEX REPLACE "^    def test_([A-Za-z0-9]+).*" "\\1" case "${case}")
        add_test(NAME ${prefix}.${case}
            COMMAND ${arg_UNPARSED_ARGUMENTS} ${CMAKE_CURRENT_SOURCE_DIR}/${file} ${case})
        set_tests_properties(${prefix}.${case} PROPERTIES
            COST ${arg_SECONDS} TIMEOUT 180 ENVIRONMENT "VANTORO_PROGRAM=${PROJECT_BINARY_DIR}/vantoro")
    endforeach()
endfunction()
