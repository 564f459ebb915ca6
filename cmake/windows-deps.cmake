# What a Windows build takes from outside, given that Debian ships none of it
# built for MinGW: SQLite compiled from the fetched amalgamation, CLI11 and
# nlohmann-json from Debian's include folders, GoogleTest from Debian's sources.
enable_language(C)

set(sqlite_dir ${PROJECT_SOURCE_DIR}/third_party/sqlite)
if(NOT EXISTS ${sqlite_dir}/sqlite3.c)
  message(FATAL_ERROR "${sqlite_dir}/sqlite3.c is missing: run scripts/fetch-sqlite.sh")
endif()
add_library(sentrune_sqlite3 STATIC ${sqlite_dir}/sqlite3.c)
target_include_directories(sentrune_sqlite3 SYSTEM PUBLIC ${sqlite_dir})
target_compile_definitions(sentrune_sqlite3 PRIVATE SQLITE_THREADSAFE=1 SQLITE_OMIT_LOAD_EXTENSION
  SQLITE_DQS=0 SQLITE_DEFAULT_FOREIGN_KEYS=1)
add_library(SQLite::SQLite3 ALIAS sentrune_sqlite3)

# Only the two libraries' own folders are exposed, through links in the build
# tree, so that /usr/include itself never reaches the cross compiler.
set(header_only ${CMAKE_BINARY_DIR}/header-only)
file(MAKE_DIRECTORY ${header_only})
foreach(dir CLI nlohmann)
  if(NOT EXISTS /usr/include/${dir})
    message(FATAL_ERROR "/usr/include/${dir} is missing: run scripts/install-deps.sh")
  endif()
  file(CREATE_LINK /usr/include/${dir} ${header_only}/${dir} SYMBOLIC)
endforeach()
add_library(CLI11::CLI11 INTERFACE IMPORTED)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${header_only})
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${header_only})

if(SENTRUNE_TESTS)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt OFF CACHE BOOL "" FORCE)
  # Its own CMake project defines the GTest:: targets.
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
