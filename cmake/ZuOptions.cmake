# Compile options shared by every target of this project; not installed.
add_library(zuOptions INTERFACE)
target_compile_options(zuOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-qual -Wformat=2
  -Wconversion -Wno-sign-conversion
  # GoogleTest's typed suites leave out the last argument of a macro; only Clang minds.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
# Contracted multiply-adds would make results depend on the machine.
target_compile_options(zuOptions INTERFACE -ffp-contract=off)
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64|i[3-6]86)$")
  # The x87 unit would keep 80-bit intermediates; with SSE2 a double is a double, and results are those of 64-bit builds.
  target_compile_options(zuOptions INTERFACE -msse2 -mfpmath=sse)
  # Files may be larger than 2 GB.
  target_compile_definitions(zuOptions INTERFACE _FILE_OFFSET_BITS=64)
endif()
if(ZU_WARNINGS_AS_ERRORS)
  target_compile_options(zuOptions INTERFACE -Werror)
endif()
if(ZU_BUILD_FUZZ)
  # Coverage of the libraries guides the fuzzer.
  target_compile_options(zuOptions INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(ZU_SANITIZE)
  target_compile_options(zuOptions INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zuOptions INTERFACE -fsanitize=address,undefined)
elseif(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT ZU_BUILD_FUZZ)
  # A library that uses what it does not link fails here and not at its client; hooks of a fuzzer come with the program.
  target_link_options(zuOptions INTERFACE -Wl,--no-undefined)
endif()
