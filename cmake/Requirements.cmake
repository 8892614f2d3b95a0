# Finds what the program is built on, or ends with the name of the package that brings it.
#
#   kadrona_require(LIBRARY DEBIAN_PACKAGE [arguments of find_package ...])
#   kadrona_require_module(TARGET DEBIAN_PACKAGE PKG_CONFIG_MODULE ...)  makes PkgConfig::TARGET

function(kadrona_end_without library package)
  message(FATAL_ERROR "Kadrona needs ${library}, which was not found here. On Debian the package "
                      "${package} brings it; ./run installs all that is missing.")
endfunction()

macro(kadrona_require library package)
  find_package(${library} ${ARGN} QUIET)
  if(NOT ${library}_FOUND)
    kadrona_end_without(${library} ${package})
  endif()
endmacro()

macro(kadrona_require_module target package)
  pkg_check_modules(${target} QUIET IMPORTED_TARGET ${ARGN})
  if(NOT ${target}_FOUND)
    kadrona_end_without("${ARGN}" ${package})
  endif()
endmacro()
