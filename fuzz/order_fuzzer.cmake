kadrona_fuzzer(order_fuzzer USES kadrona_core)
