# Compile options shared by every target of this project; not installed.
add_library(zuOptions INTERFACE)
target_compile_options(zuOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-qual -Wformat=2 -Wnull-dereference
  -Wconversion -Wno-sign-conversion)
# Contracted multiply-adds would make results depend on the machine.
target_compile_options(zuOptions INTERFACE -ffp-contract=off)
if(ZU_WARNINGS_AS_ERRORS)
  target_compile_options(zuOptions INTERFACE -Werror)
endif()
if(ZU_SANITIZE)
  target_compile_options(zuOptions INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zuOptions INTERFACE -fsanitize=address,undefined)
endif()
