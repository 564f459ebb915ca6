# Our own code builds warning-free; third-party headers come in as SYSTEM includes.
function(sentrune_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
  # GCC 12 reports impossible overlaps inside std::string at -O2 (its bug
  # 105329); the warning carries no information about our code there.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()

# One static library per source folder, its files found by glob so that adding
# a file needs no edit here.
function(sentrune_library name)
  cmake_parse_arguments(ARG "" "" "DIRS;LINKS" ${ARGN})
  set(sources "")
  foreach(dir IN LISTS ARG_DIRS)
    file(GLOB dir_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
    list(APPEND sources ${dir_sources})
  endforeach()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_LINKS})
    sentrune_warnings(${name})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE ${ARG_LINKS})
  endif()
endfunction()
