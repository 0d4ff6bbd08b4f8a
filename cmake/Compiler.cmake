# One dialect and one set of warnings for everything.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# Positions and speeds are 32-bit by design and every rounding counts: no contraction, no x87, no fast math.
add_compile_options(-ffp-contract=off)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -g1")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1") # of the sanitizers: quick to build, lines in reports
set(VESK_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Wshadow=local -Wnon-virtual-dtor
                  -Woverloaded-virtual -Wimplicit-fallthrough)
option(VESK_WERROR "Warnings are errors" ON)
if(VESK_WERROR)
  list(APPEND VESK_WARNINGS -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Its -Wshadow also counts the constants of the game's variables, x and y and their kin, as shadowed.
  list(REMOVE_ITEM VESK_WARNINGS -Wshadow=local)
endif()

if(VESK_SANITIZE)
  add_compile_options(-fsanitize=${VESK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VESK_SANITIZE})
endif()

# The fuzzers see which branches of the runner and the game an input reaches.
if(VESK_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()

# Paths below the source folder are kept relative, so that every checkout shares the cache.
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE})
endif()
