# The headers that most sources read, compiled once for all libraries that use the same part of Qt.
# Reading them is most of what compiling a source costs.
#
#   kadrona_use_precompiled_headers(TARGET [TESTS])   call it after the target's libraries are named
#
# A target gets the set of the highest part of Qt that it links, so that nothing below the windows
# sees a header of a window through here either. Sources still include what they use: the presets
# without precompiled headers (CMAKE_DISABLE_PRECOMPILE_HEADERS) tell where one does not.

set(KADRONA_HEADERS_STANDARD
    <algorithm> <array> <cmath> <cstdint> <functional> <limits> <memory> <optional> <span>
    <string> <utility> <vector>)
set(KADRONA_HEADERS_Core
    ${KADRONA_HEADERS_STANDARD} <QByteArray> <QByteArrayView> <QDateTime> <QDir> <QFile> <QFileInfo>
    <QHash> <QIODevice> <QObject> <QPoint> <QRect> <QRegularExpression> <QSize> <QString>
    <QStringList> <QTemporaryDir> <QTimer> <QVariant>)
set(KADRONA_HEADERS_Gui ${KADRONA_HEADERS_Core} <QColor> <QIcon> <QImage> <QImageReader> <QPainter>
                        <QPainterPath> <QPixmap> <QTransform>)
set(KADRONA_HEADERS_Widgets
    ${KADRONA_HEADERS_Gui} <QAction> <QApplication> <QBoxLayout> <QCheckBox> <QComboBox> <QDialog>
    <QDialogButtonBox> <QEvent> <QGridLayout> <QKeyEvent> <QLabel> <QLineEdit> <QListWidget>
    <QMainWindow> <QMenu> <QMessageBox> <QMouseEvent> <QPushButton> <QSpinBox> <QStyle>
    <QToolButton> <QWidget>)
set(KADRONA_HEADERS_TESTS <gtest/gtest.h> <gmock/gmock.h>)

# Sets `variable` to the highest of Core, Gui and Widgets that a target links, by any way.
function(kadrona_part_of_qt variable target)
  set(part)
  set(seen)
  set(open ${target})
  while(open)
    list(POP_FRONT open library)
    if(library STREQUAL "Qt6::Widgets")
      set(part Widgets)
    elseif(library STREQUAL "Qt6::Gui" AND NOT part STREQUAL "Widgets")
      set(part Gui)
    elseif(library STREQUAL "Qt6::Core" AND NOT part)
      set(part Core)
    endif()
    if(TARGET ${library} AND NOT library MATCHES "::" AND NOT library IN_LIST seen)
      list(APPEND seen ${library})
      foreach(property LINK_LIBRARIES INTERFACE_LINK_LIBRARIES)
        get_target_property(libraries ${library} ${property})
        if(libraries)
          list(APPEND open ${libraries})
        endif()
      endforeach()
    endif()
  endwhile()
  set(${variable} "${part}" PARENT_SCOPE)
endfunction()

# Makes, once, the library that holds the compiled headers of one set.
function(kadrona_make_precompiled_headers library part tests)
  if(TARGET ${library})
    return()
  endif()
  set(source "${PROJECT_BINARY_DIR}/${library}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "// Only there to compile the headers.\n")
  add_library(${library} OBJECT "${source}")
  target_link_libraries(${library} PRIVATE Qt6::${part} kadrona_build_options)
  set(headers ${KADRONA_HEADERS_${part}})
  if(tests)
    target_link_libraries(${library} PRIVATE GTest::gmock)
    list(APPEND headers ${KADRONA_HEADERS_TESTS})
  endif()
  set_target_properties(${library} PROPERTIES AUTOMOC OFF AUTORCC OFF)
  target_precompile_headers(${library} PRIVATE ${headers})
  # What the compiler cache tells one compiled set from another by: its bytes are never twice alike.
  string(SHA256 checksum "${CMAKE_CXX_COMPILER_VERSION} ${Qt6_VERSION} ${headers}")
  file(CONFIGURE
       OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${library}.dir/cmake_pch.hxx.gch.sum"
       CONTENT "${checksum}\n")
endfunction()

function(kadrona_use_precompiled_headers target)
  cmake_parse_arguments(arg "TESTS" "" "" ${ARGN})
  kadrona_part_of_qt(part ${target})
  if(NOT part)
    return()
  endif()
  string(TOLOWER "kadrona_headers_${part}" library)
  if(arg_TESTS)
    string(APPEND library "_tests")
  endif()
  kadrona_make_precompiled_headers(${library} ${part} "${arg_TESTS}")
  target_precompile_headers(${target} REUSE_FROM ${library})
endfunction()
