# Compiler options of our own targets, as an interface library: what we include is not held to them.
add_library(vantoro_options INTERFACE)
target_compile_options(vantoro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    -Woverloaded-virtual -Wold-style-cast -Wcast-align -Wformat=2 -Wundef -Werror)
target_include_directories(vantoro_options INTERFACE ${PROJECT_SOURCE_DIR})

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

# vantoro_test(NAME SOURCES... LIBRARIES ...): a GoogleTest program, each case a test of ctest.
function(vantoro_test name)
    cmake_parse_arguments(arg "" "" "LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE vantoro_options ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
    # The test framework's headers take longer to read than most tests to compile.
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h>)
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()

# vantoro_python_tests(PREFIX FILE [LAUNCHER...]): each case of a Python test program, a test of ctest.
# The program takes a case's name; a launcher is the command that the program runs under.
function(vantoro_python_tests prefix file)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} cases REGEX "^    def test_")
    foreach(case IN LISTS cases)
        string(REGEX REPLACE "^    def test_([A-Za-z0-9]+).*" "\\1" case "${case}")
        add_test(NAME ${prefix}.${case} COMMAND ${ARGN} ${CMAKE_CURRENT_SOURCE_DIR}/${file} ${case})
        set_tests_properties(${prefix}.${case} PROPERTIES
            TIMEOUT 180 ENVIRONMENT "VANTORO_PROGRAM=${PROJECT_BINARY_DIR}/vantoro")
    endforeach()
endfunction()
