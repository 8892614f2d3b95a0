# OpenCV's core and imgproc alone. Their Debian packages carry no CMake configuration (that comes
# only with the package of all OpenCV modules), so they are looked up here.
#
# Defines the target OpenCV::imgproc.
find_path(OpenCVImgproc_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OpenCVImgproc_CORE_LIBRARY opencv_core)
find_library(OpenCVImgproc_LIBRARY opencv_imgproc)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCVImgproc REQUIRED_VARS OpenCVImgproc_LIBRARY
                                  OpenCVImgproc_CORE_LIBRARY OpenCVImgproc_INCLUDE_DIR)

if(OpenCVImgproc_FOUND AND NOT TARGET OpenCV::imgproc)
  add_library(OpenCV::imgproc INTERFACE IMPORTED)
  target_include_directories(OpenCV::imgproc SYSTEM INTERFACE "${OpenCVImgproc_INCLUDE_DIR}")
  target_link_libraries(OpenCV::imgproc INTERFACE "${OpenCVImgproc_LIBRARY}"
                                                  "${OpenCVImgproc_CORE_LIBRARY}")
endif()
