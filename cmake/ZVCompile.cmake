# What holds for everything that is compiled here. Floating-point results are part of the promises of the library,
# so nothing may contract or reorder them.
function(zv_compile_options target)
    target_compile_options(${target} PRIVATE
        -ffp-contract=off -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor
        $<$<BOOL:${ZV_WARNINGS_AS_ERRORS}>:-Werror>
        # Clang counts conversions of sign to -Wconversion, GCC does not.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
        # GCC 12 sees overlaps and bad frees in inlined std::string code that has none (its bug 105651).
        $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;-Wno-free-nonheap-object>)
    if(ZV_SANITIZE)
        list(JOIN ZV_SANITIZE "," sanitizers)
        target_compile_options(${target} PRIVATE -fsanitize=${sanitizers} -fno-omit-frame-pointer
            -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${sanitizers})
    endif()
endfunction()
