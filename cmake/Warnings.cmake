# Warnings for our own targets: -Wall -Wextra clean is the rule.
function(kestrelink_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
