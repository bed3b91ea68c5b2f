# What the Windows build takes from outside, gathered by scripts/windows-dependencies in one folder of the
# build tree: the database engine's source, and the header-only libraries without the system's own headers.
set(dependencies ${CMAKE_SOURCE_DIR}/build/windows-dependencies)
if(NOT EXISTS ${dependencies}/sqlite3/sqlite3.c)
  message(FATAL_ERROR "The Windows build needs its dependencies: run scripts/windows-dependencies first")
endif()

add_library(sqlite3 STATIC ${dependencies}/sqlite3/sqlite3.c)
target_include_directories(sqlite3 SYSTEM PUBLIC ${dependencies}/sqlite3)
target_compile_definitions(sqlite3 PRIVATE SQLITE_DQS=0 SQLITE_OMIT_LOAD_EXTENSION SQLITE_OMIT_DEPRECATED)
target_compile_options(sqlite3 PRIVATE -O2 -w)
add_library(SQLite::SQLite3 ALIAS sqlite3)

foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json kainjow::mustache)
  add_library(${library} INTERFACE IMPORTED)
  target_include_directories(${library} SYSTEM INTERFACE ${dependencies}/include)
endforeach()
