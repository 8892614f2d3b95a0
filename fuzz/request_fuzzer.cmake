kadrona_fuzzer(request_fuzzer USES Qt6::Core)
# Alone, without the windows of the library that it belongs to.
target_sources(request_fuzzer PRIVATE ../app/commandline/PackedRequest.cpp)
target_include_directories(request_fuzzer PRIVATE "${PROJECT_SOURCE_DIR}")
