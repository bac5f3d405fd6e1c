# What makes faults of the memory in a release harder to exploit: canaries on stacks, checked library calls, an
# address that changes from run to run, and tables of the linker that cannot be written. The sanitizers bring
# their own.
function(fluvane_harden target)
  if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR FLUVANE_SANITIZE)
    return()
  endif()
  target_compile_options(${target} PRIVATE
    "$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_link_options(${target} PRIVATE -pie -Wl,-z,relro,-z,now)
  endif()
endfunction()

# What every target of the project is compiled with; UNHARDENED leaves out what the function above adds.
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
  if(NOT "UNHARDENED" IN_LIST ARGN)
    fluvane_harden(${target})
  endif()
endfunction()
