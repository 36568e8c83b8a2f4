# One library per folder of src/, one test executable per folder of tests/.
#
# A folder's headers are reached as "folder/File.h" through a directory that holds that folder
# alone, so code can include a folder only if its target links it: an include that runs up the
# house does not compile.

add_library(house_options INTERFACE)
target_compile_options(house_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
if(VELLUMAR_SANITIZE)
  # Between the sanitizers' checks the compiler loses sight of what has been set; the release build warns.
  target_compile_options(house_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(house_options INTERFACE -fsanitize=address,undefined)
endif()

set(HOUSE_INCLUDES ${CMAKE_BINARY_DIR}/includes)

# add_house_folder(<folder> [LINKS lower-folder...] [USES external-library...])
function(add_house_folder folder)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LINKS;USES")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp
                                      ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  if(NOT sources)  # a folder that is still empty
    add_library(${folder} INTERFACE)
    return()
  endif()
  add_library(${folder} STATIC ${sources})
  set_target_properties(${folder} PROPERTIES LINKER_LANGUAGE CXX)
  file(MAKE_DIRECTORY ${HOUSE_INCLUDES}/${folder})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${folder} ${HOUSE_INCLUDES}/${folder}/${folder} SYMBOLIC)
  target_include_directories(${folder} PUBLIC ${HOUSE_INCLUDES}/${folder})
  target_link_libraries(${folder} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_USES} house_options)
endfunction()

# add_house_test(<folder> [LINKS library...]) builds tests/<folder>/*.cpp into <folder>_test.
function(add_house_test folder)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LINKS")
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${folder}_test ${sources})
  target_include_directories(${folder}_test PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${folder}_test PRIVATE ${folder} ${ARG_LINKS} house_options GTest::gmock_main)
  add_test(NAME ${folder} COMMAND ${folder}_test)
  set_tests_properties(${folder} PROPERTIES TIMEOUT 600)
endfunction()
