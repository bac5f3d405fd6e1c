# What every target of the project is compiled with.
function(fluvane_target_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /utf-8 /fp:precise)
    if(FLUVANE_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE /WX)
    endif()
    return()
  endif()
  # Products are rounded before they are added: results are the same bits on every machine.
  target_compile_options(${target} PRIVATE
    -ffp-contract=off
    -Wall -Wextra -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor -Wformat=2)
  if(FLUVANE_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(FLUVANE_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${FLUVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${FLUVANE_SANITIZE})
  endif()
endfunction()
