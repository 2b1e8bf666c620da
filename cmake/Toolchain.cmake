# Compiler settings shared by every target: warnings, sanitizers and ccache.

find_program(QF_CCACHE ccache)
if(QF_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QF_CCACHE})
endif()

if(QF_SANITIZE)
  add_compile_options(-fsanitize=${QF_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QF_SANITIZE})
endif()

function(qf_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wold-style-cast
                         -Wnon-virtual-dtor -Wshadow)
endfunction()
