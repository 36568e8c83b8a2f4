# One library per folder of src/, one test executable per folder of tests/. A folder within another, such as
# ui/kit, makes a library of its own, named ui_kit.
#
# A folder's headers are reached as "folder/File.h" through a directory that holds that folder
# alone, so code can include a folder only if its target links it: an include that runs up the
# house does not compile.

add_library(house_options INTERFACE)
target_compile_options(house_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)

# In the sanitizer build the code of src/ gets all checks. Test code gets only those for memory, and isn't
# optimized: that halves the time to compile a test file.
add_library(source_options INTERFACE)
add_library(test_options INTERFACE)
target_link_libraries(source_options INTERFACE house_options)
target_link_libraries(test_options INTERFACE house_options)
if(VELLUMAR_SANITIZE)
  # Between the sanitizers' checks the compiler loses sight of what has been set; the release build warns.
  target_compile_options(house_options INTERFACE
    -fsanitize=address -fno-omit-frame-pointer $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(house_options INTERFACE -fsanitize=address,undefined)
  target_compile_options(source_options INTERFACE -fsanitize=undefined -fno-sanitize-recover=undefined)
  target_compile_options(test_options INTERFACE -O0)
endif()

include(Precompiled)

set(HOUSE_INCLUDES ${CMAKE_BINARY_DIR}/includes)

# add_house_folder(<folder> [LINKS lower-folder...] [USES external-library...])
function(add_house_folder folder)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LINKS;USES")
  string(REPLACE / _ library ${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp
                                      ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  if(NOT sources)  # a folder that is still empty
    add_library(${library} INTERFACE)
    return()
  endif()
  add_library(${library} STATIC ${sources})
  set_target_properties(${library} PROPERTIES LINKER_LANGUAGE CXX)
  set(link ${HOUSE_INCLUDES}/${library}/${folder})
  cmake_path(GET link PARENT_PATH around)
  file(MAKE_DIRECTORY ${around})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${folder} ${link} SYMBOLIC)
  target_include_directories(${library} PUBLIC ${HOUSE_INCLUDES}/${library})
  target_link_libraries(${library} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_USES} source_options)
  use_precompiled(${library} "" ${ARG_USES})
endfunction()

# add_house_test(<folder> [LINKS library...]) builds tests/<folder>/*.cpp into <library>_test.
function(add_house_test folder)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LINKS")
  string(REPLACE / _ library ${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${library}_test ${sources})
  target_include_directories(${library}_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${library}_test PRIVATE ${library} ${ARG_LINKS} test_options GTest::gmock_main)
  use_precompiled(${library}_test _test ${ARG_LINKS})
  add_test(NAME ${library} COMMAND ${library}_test)
  set_tests_properties(${library} PROPERTIES TIMEOUT 600)
endfunction()
