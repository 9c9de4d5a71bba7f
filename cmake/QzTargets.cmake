# Settings that every target of the project shares. They hang on targets; nothing here is global.

function(qz_configure_target target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wconversion)
    if(QZXMLLIB_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(QZXMLLIB_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${QZXMLLIB_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${QZXMLLIB_SANITIZE})
    endif()
endfunction()
