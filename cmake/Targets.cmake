# SPDX-License-Identifier: GPL-3.0-or-later
# How every target of this project is made, so that warnings, definitions and include paths are
# stated once.

add_library(plinthar_options INTERFACE)
target_compile_features(plinthar_options INTERFACE cxx_std_20)
target_compile_options(plinthar_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
target_compile_definitions(plinthar_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                      QT_NO_KEYWORDS)
if(PLINTHAR_SANITIZE)
  # Undefined behaviour ends a program like everything else that is found, or no test would fail.
  # -g1: a report names functions and lines; more makes the objects three times as large.
  target_compile_options(plinthar_options INTERFACE -fsanitize=${PLINTHAR_SANITIZE}
                                                    -fno-sanitize-recover=all
                                                    -fno-omit-frame-pointer -g1)
  target_link_options(plinthar_options INTERFACE -fsanitize=${PLINTHAR_SANITIZE})
endif()

# Where a part of every program helps the sanitizer, programs are made of that as well.
set(PLINTHAR_TEST_TIMEOUT 300) # seconds
if(PLINTHAR_SANITIZE)
  set(PLINTHAR_TEST_TIMEOUT 1200)
endif()
if(PLINTHAR_SANITIZE STREQUAL "thread")
  add_library(plinthar_program_options OBJECT cmake/QtForThreadSanitizer.cpp)
  target_link_libraries(plinthar_program_options
    PUBLIC plinthar_options Qt6::Core ${CMAKE_DL_LIBS})
else()
  add_library(plinthar_program_options INTERFACE)
  target_link_libraries(plinthar_program_options INTERFACE plinthar_options)
endif()

# The tests of code that starts threads.
add_custom_target(thread_tests)

# plinthar_library(NAME SOURCES ... LINK ...): one room of the program. What is linked is what may
# be included: a logic target that does not link Qt Gui cannot see a widget.
function(plinthar_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE plinthar_options)
endfunction()

# plinthar_test(NAME [THREADS] LINK ...): a Qt Test program made of NAME.cpp and run by CTest without
# a display. THREADS: what it tests starts threads.
function(plinthar_test name)
  cmake_parse_arguments(ARG "THREADS" "" "LINK;ARGUMENTS" ${ARGN})
  add_executable(${name} ${name}.cpp)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE
    ${ARG_LINK} plinthar_test_support Qt6::Test plinthar_program_options)
  add_test(NAME ${name} COMMAND ${name} ${ARG_ARGUMENTS})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT ${PLINTHAR_TEST_TIMEOUT})
  if(ARG_THREADS)
    set_tests_properties(${name} PROPERTIES LABELS threads)
    add_dependencies(thread_tests ${name})
  endif()
endfunction()
