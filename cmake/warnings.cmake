option(ZQV_WERROR "Treat warnings in our own code as errors" OFF)

# Enables the warnings that all code of this project must be free of, with g++ and clang++.
function(zqv_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wcast-align
    -Wnon-virtual-dtor
    $<$<BOOL:${ZQV_WERROR}>:-Werror>)
endfunction()
