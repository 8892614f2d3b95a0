if(TARGET kadrona_printing_service)
  kadrona_fuzzer(driver_fuzzer USES kadrona_printing_service)
endif()
