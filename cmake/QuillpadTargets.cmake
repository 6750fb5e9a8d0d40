# How every target of the project is made: one set of warnings, one language level, one include root (src/), one
# folder for programs (bin/ of the build folder).

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

set(QUILLPAD_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(quillpad_options INTERFACE)
target_include_directories(quillpad_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(
  quillpad_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                             $<$<CXX_COMPILER_ID:GNU>:-Wno-psabi>
                             # GCC 12 warns of its own std::string when a literal stands beside one.
                             "$<$<CXX_COMPILER_ID:GNU>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow>"
                             # So that ccache takes note of the precompiled headers.
                             $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
# A program loads what it calls, not what its libraries might.
target_link_options(quillpad_options INTERFACE -Wl,--as-needed)
if(QUILLPAD_SANITIZE)
  target_compile_options(
    quillpad_options INTERFACE -fsanitize=${QUILLPAD_SANITIZE} -fno-omit-frame-pointer
                               -fno-sanitize-recover=all)
  target_link_options(quillpad_options INTERFACE -fsanitize=${QUILLPAD_SANITIZE})
endif()

# quillpad_precompile(NAME HEADERS...): a target whose headers are read once for all that reuse them.
function(quillpad_precompile name)
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE quillpad_options)
  target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

set(standard_headers <algorithm> <array> <chrono> <expected> <filesystem> <functional> <map> <memory> <optional> <ranges>
                     <span> <string> <string_view> <unordered_map> <variant> <vector>)
set(precompiled precompiled_standard)
quillpad_precompile(${precompiled} ${standard_headers})

# quillpad_state_edges(NAME SHOWN HIDDEN): notes what a target of src/ links, for tools/check-includes.
function(quillpad_state_edges name shown hidden)
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  if(folder MATCHES "^src/")
    list(JOIN shown " " shown)
    list(JOIN hidden " " hidden)
    set_property(GLOBAL APPEND_STRING PROPERTY QUILLPAD_EDGES "${folder}|${name}|${shown}|${hidden}\n")
  endif()
endfunction()

# quillpad_write_edges(): what every target has stated, into edges.txt of the build folder.
function(quillpad_write_edges)
  get_property(edges GLOBAL PROPERTY QUILLPAD_EDGES)
  file(WRITE ${CMAKE_BINARY_DIR}/edges.txt "${edges}")
endfunction()

# quillpad_library(NAME SOURCES ... LINKS ... PRIVATE_LINKS ...): a static library; LINKS is what its headers show,
# PRIVATE_LINKS what stays behind them.
function(quillpad_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quillpad_options ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
  target_precompile_headers(${name} REUSE_FROM ${precompiled})
  quillpad_state_edges(${name} "${ARG_LINKS}" "${ARG_PRIVATE_LINKS}")
endfunction()

# quillpad_embed(SOURCE HEADER NAMESPACE FOLDER NAMES...): writes the folder's files into a C++ source of the build folder,
# as the constants that the header declares.
function(quillpad_embed source header namespace folder)
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE paths)
  add_custom_command(
    OUTPUT ${source}
    COMMAND ${CMAKE_COMMAND} -DOUTPUT=${source} -DHEADER=${header} -DNAMESPACE=${namespace} -DFOLDER=${folder}
            "-DNAMES=${ARGN}" -P ${PROJECT_SOURCE_DIR}/cmake/Embed.cmake
    DEPENDS ${PROJECT_SOURCE_DIR}/cmake/Embed.cmake ${paths}
    VERBATIM)
endfunction()

# quillpad_program(NAME SOURCES ... LINKS ...): a program in bin/; its own sources know the QUILLPAD_VERSION.
function(quillpad_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE quillpad_options ${ARG_LINKS})
  target_compile_definitions(${name} PRIVATE QUILLPAD_VERSION="${PROJECT_VERSION}")
  quillpad_state_edges(${name} "${ARG_LINKS}" "")
endfunction()

# quillpad_hold_runtime(NAME): puts the C++ library into the program. Relocating the shared one takes as long as all else
# that a short command does.
function(quillpad_hold_runtime name)
  if(NOT QUILLPAD_SANITIZE)
    target_link_options(${name} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
endfunction()

# quillpad_test(NAME SOURCES ... LINKS ...): a GoogleTest program, each of its cases a test of CTest.
function(quillpad_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  # Cases of two files may have helpers of the same name.
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests UNITY_BUILD OFF)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE quillpad_options ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM precompiled_tests)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
endfunction()
