include(PrecompiledHeaders)

# All parts of the program, for what runs them.
add_custom_target(kadrona_parts)

# A library made of the folder's own sources, or of those of the subfolders named.
function(kadrona_add_library name kind)
  cmake_parse_arguments(arg "" "" "FOLDERS;USES;PRIVATE" ${ARGN})
  if(NOT arg_FOLDERS)
    set(arg_FOLDERS .)
  endif()
  set(patterns)
  foreach(folder IN LISTS arg_FOLDERS)
    foreach(extension cpp h qrc)
      cmake_path(SET pattern NORMALIZE "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.${extension}")
      list(APPEND patterns "${pattern}")
    endforeach()
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(${name} ${kind} ${sources})
  target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE kadrona_build_options ${arg_PRIVATE})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  # Else the generator of meta-objects would not look at a header that is new in an old build tree.
  list(FILTER sources INCLUDE REGEX "\\.h$")
  set_property(TARGET ${name} PROPERTY AUTOGEN_TARGET_DEPENDS "${sources}")
  kadrona_use_precompiled_headers(${name})
endfunction()

# One module of the program: a static library made of the folder's own sources, or of those of the
# subfolders named.
#
#   kadrona_module(NAME [FOLDERS folder ...] USES lib ... [PRIVATE lib ...])
#
# A module sees only what it names under USES (also visible to its users) and PRIVATE. That is what
# keeps the levels of docs/architecture.md: a lower module cannot link, nor find the Qt headers of,
# a higher one.
function(kadrona_module name)
  kadrona_add_library(${name} STATIC ${ARGN})
endfunction()

# The same as a part of the program, which is opened when it is first needed (platform/ProgramPart.h).
# It has a copy of its own of the modules that it uses, so nothing in these may count on being there
# once.
function(kadrona_part name)
  kadrona_add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY
                                                     "${KADRONA_PARTS_FOLDER}")
  target_link_options(${name} PRIVATE -Wl,--exclude-libs,ALL)
  add_dependencies(kadrona_parts ${name})
  set_property(GLOBAL APPEND PROPERTY KADRONA_PARTS ${name})
endfunction()

# The tests of one module: every .cpp of the folder, run by CTest one test at a time without a
# display. WIDGETS gives them a QApplication, else they get a QGuiApplication. DISPLAY gives them a
# real display (label "display"; tools/build-and-test starts one), which one test at a time owns.
function(kadrona_tests name)
  cmake_parse_arguments(arg "WIDGETS;DISPLAY" "" "USES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp"
       "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  add_executable(${name} ${sources})
  if(arg_WIDGETS)
    set(main kadrona_widget_test_main)
  else()
    set(main kadrona_test_main)
  endif()
  target_link_libraries(${name} PRIVATE ${arg_USES} ${main} kadrona_build_options GTest::gmock)
  kadrona_use_precompiled_headers(${name} TESTS)
  add_dependencies(${name} kadrona_parts)
  if(arg_DISPLAY)
    set(properties ENVIRONMENT "QT_QPA_PLATFORM=xcb" LABELS display RESOURCE_LOCK display)
  else()
    set(properties ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  endif()
  gtest_discover_tests(
    ${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120 ${properties})
endfunction()

# A fuzz target: one source file with LLVMFuzzerTestOneInput.
function(kadrona_fuzzer name)
  cmake_parse_arguments(arg "" "" "USES" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE ${arg_USES} kadrona_build_options)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  add_dependencies(${name} kadrona_parts)
endfunction()
