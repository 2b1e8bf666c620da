# Compiler settings shared by every target: warnings, sanitizers and ccache.

find_program(QF_CCACHE ccache)
if(QF_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QF_CCACHE})
endif()

if(QF_SANITIZE)
  add_compile_options(-fsanitize=${QF_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QF_SANITIZE})
endif()

# Only the project's own targets get these (library headers come in as system headers), so with
# QF_WERROR a warning fails the build of our code but never CMake's checks or someone else's header.
function(qf_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wold-style-cast
                         -Wnon-virtual-dtor -Wshadow)
  if(QF_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
