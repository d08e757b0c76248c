option(ZQV_WERROR "Treat warnings in our own code as errors" OFF)

# The warnings that all our code compiles without, on g++ and clang++ alike.
function(zqv_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Wcast-align
    -Wnon-virtual-dtor
    $<$<BOOL:${ZQV_WERROR}>:-Werror>)
endfunction()
