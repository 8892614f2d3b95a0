# OpenCV's objdetect alone, beside core and imgproc (FindOpenCVImgproc.cmake says why it is looked up
# here).
#
# Defines the target OpenCV::objdetect.
find_package(OpenCVImgproc REQUIRED)
find_path(OpenCVObjdetect_INCLUDE_DIR opencv2/objdetect.hpp PATH_SUFFIXES opencv4)
find_library(OpenCVObjdetect_LIBRARY opencv_objdetect)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCVObjdetect REQUIRED_VARS OpenCVObjdetect_LIBRARY
                                  OpenCVObjdetect_INCLUDE_DIR)

if(OpenCVObjdetect_FOUND AND NOT TARGET OpenCV::objdetect)
  add_library(OpenCV::objdetect INTERFACE IMPORTED)
  target_include_directories(OpenCV::objdetect SYSTEM INTERFACE "${OpenCVObjdetect_INCLUDE_DIR}")
  target_link_libraries(OpenCV::objdetect INTERFACE "${OpenCVObjdetect_LIBRARY}" OpenCV::imgproc)
endif()
