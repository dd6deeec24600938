# Provides the imported target PCRE2::8BIT (the 8-bit PCRE2 library, under
# the name PCRE2's own CMake package gives it): from that package when it is
# installed, else from pkg-config's libpcre2-8 under the private prefix
# _PELINOR_PCRE2. The search runs inside a function, so a project's own
# PCRE2_* variables stay as they were. Sets PelinorPCRE2_FOUND.
function(_pelinor_find_pcre2)
  set(PelinorPCRE2_FOUND TRUE PARENT_SCOPE)
  if(TARGET PCRE2::8BIT)
    return()
  endif()
  find_package(PCRE2 CONFIG QUIET COMPONENTS 8BIT)
  if(TARGET PCRE2::8BIT)
    return()
  endif()
  set(PelinorPCRE2_FOUND FALSE PARENT_SCOPE)
  find_package(PkgConfig QUIET)
  if(PKG_CONFIG_FOUND)
    pkg_check_modules(_PELINOR_PCRE2 QUIET IMPORTED_TARGET libpcre2-8)
    if(_PELINOR_PCRE2_FOUND)
      add_library(PCRE2::8BIT INTERFACE IMPORTED)
      set_target_properties(PCRE2::8BIT PROPERTIES INTERFACE_LINK_LIBRARIES
                            PkgConfig::_PELINOR_PCRE2)
      set(PelinorPCRE2_FOUND TRUE PARENT_SCOPE)
    endif()
  endif()
endfunction()
_pelinor_find_pcre2()
