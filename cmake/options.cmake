# SPDX-License-Identifier: GPL-3.0-or-later
# Compiler options of our own targets, as an interface library: they do not apply to third-party headers.
add_library(vantoro_options INTERFACE)
target_compile_options(vantoro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wundef)
target_include_directories(vantoro_options INTERFACE ${PROJECT_SOURCE_DIR})
# A unity build of the program takes 141 s of processor time; one by one, its sources outside ui alone take 263 s.
# Sources in a unity build see each other's names; the development build reports what a source itself shadows.
add_library(vantoro_read_in_one_go INTERFACE)
target_compile_options(vantoro_read_in_one_go INTERFACE -Wno-shadow)
if(CMAKE_UNITY_BUILD)
    target_link_libraries(vantoro_options INTERFACE vantoro_read_in_one_go)
endif()

if(VANTORO_SANITIZE)
    add_compile_options(-fsanitize=${VANTORO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VANTORO_SANITIZE})
    # With sanitizers, GCC 12 reports uninitialised values in the standard library.
    add_compile_options(-Wno-maybe-uninitialized)
endif()

# vantoro_library(NAME SOURCES...): a static library of one folder, with our compiler options.
function(vantoro_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PRIVATE vantoro_options)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()

# vantoro_module(NAME FILE SOURCE LIBRARIES...): a module that the program loads from a file beside it.
function(vantoro_module name file source)
    add_library(${name} MODULE ${source})
    target_link_libraries(${name} PRIVATE vantoro_options ${ARGN})
    target_compile_definitions(${name} PRIVATE VANTORO_VERSION="${PROJECT_VERSION}" QT_NO_KEYWORDS)
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME ${file} LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
endfunction()

# vantoro_option_texts(FILE): produces the file in the build folder from FILE.in and the table of commands and options.
function(vantoro_option_texts file)
    set(produced ${CMAKE_CURRENT_BINARY_DIR}/${file})
    cmake_path(GET produced PARENT_PATH folder)
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(OUTPUT ${produced}
        COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/app/commands/option_texts.py
            ${CMAKE_CURRENT_SOURCE_DIR}/${file}.in ${produced}
        DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${file}.in ${PROJECT_SOURCE_DIR}/app/commands/option_texts.py
            ${PROJECT_SOURCE_DIR}/app/commands/options.toml
        VERBATIM)
endfunction()

# vantoro_test(NAME SOURCES... LIBRARIES ... [QT] [LAUNCHER ...] [PROPERTIES ...]): a GoogleTest program, each case a
# ctest test. QT: it includes Qt headers; LAUNCHER: the command that it runs under; PROPERTIES: of its cases. Tests spend
# most of their compile time on the framework's headers and on optimisation, so they use precompiled headers and -O0, and
# unity builds except in the development build, where one source changes at a time.
function(vantoro_test name)
    cmake_parse_arguments(arg "QT" "" "LIBRARIES;LAUNCHER;PROPERTIES" ${ARGN})
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE vantoro_options ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
    target_compile_options(${name} PRIVATE -O0 -fPIC -pthread) # like the precompiled headers
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

# vantoro_python_tests(PREFIX FILE [SECONDS N] [LAUNCHER...]): makes each case of a Python test program a ctest test.
# The program takes a case's name; LAUNCHER is the command that it runs under. SECONDS (10) is the duration of its longer
# cases: ctest starts the longest tests first, so that none runs alone at the end.
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
