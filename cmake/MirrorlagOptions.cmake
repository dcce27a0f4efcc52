# Compiler settings shared by every target of the project: strict warnings for
# both g++ and clang++, direct calls inside our libraries, and the sanitizer
# build when MIRRORLAG_SANITIZE is on.

add_compile_options(-Wall -Wextra -Werror)

# g++ 12 at -O3 warns that std::string's own copies may overlap (a false
# report of the compiler's, on code such as "a" + std::to_string(n)).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wno-restrict)
endif()

# Calls inside one of our shared libraries go straight to the library's own
# functions (and may be inlined) instead of through its symbol table: nothing
# of ours is meant to be replaced by another library's definition.
add_compile_options(-fno-semantic-interposition)

if(MIRRORLAG_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(MIRRORLAG_TSAN)
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
endif()

# The fuzz build instruments every library for libFuzzer's coverage; only the
# fuzz targets link its driver.
if(MIRRORLAG_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Our shared libraries bind the calls to their own functions when they are
# linked, across their source files, instead of through their symbol table
# at run time: with the option above, every call inside one of them is a
# direct call. (The chip model, the vendor's library, keeps its own linking.)
function(mirrorlag_direct_calls target)
  target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
endfunction()
