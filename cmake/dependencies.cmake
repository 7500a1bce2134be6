# SPDX-License-Identifier: GPL-3.0-or-later
# The libraries and their minimum versions, which are Debian 12's. Qt's is where a folder uses Qt.
find_package(PkgConfig REQUIRED)
find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)
find_package(Threads REQUIRED)

pkg_check_modules(PIPEWIRE REQUIRED IMPORTED_TARGET libpipewire-0.3>=0.3.65)
# Its macros use extensions of GCC.
target_compile_options(PkgConfig::PIPEWIRE INTERFACE
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-statement-expression-from-macro-expansion -Wno-c99-extensions>)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET libavcodec>=59.37 libavutil>=57.28)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET glib-2.0>=2.74)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0>=2.74 gio-unix-2.0>=2.74)
pkg_check_modules(SYSTEMD REQUIRED IMPORTED_TARGET libsystemd>=252)
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig>=2.14)
if(VANTORO_TESTS)
    pkg_check_modules(AVFORMAT REQUIRED IMPORTED_TARGET libavformat>=59.27)
    find_package(GTest REQUIRED)
endif()
if(VANTORO_BENCHMARKS)
    find_package(benchmark REQUIRED)
endif()
