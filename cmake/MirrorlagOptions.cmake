# Compiler settings shared by every target of the project: strict warnings for
# both g++ and clang++, and the sanitizer build when MIRRORLAG_SANITIZE is on.

add_compile_options(-Wall -Wextra -Werror)

if(MIRRORLAG_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Every first-party target sees the repository root (for <chipsim/...> and
# <BfIngressMirrorLagGroup/...>) and platform/ (for <Vel/...>, <Quill/...>).
function(mirrorlag_target_includes target)
  target_include_directories(${target} PUBLIC
    ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/platform)
endfunction()
