#include "tests/support/VisibleThreads.h"

#include <memory>
#include <opencv2/core/parallel/parallel_backend.hpp>
#include <thread>
#include <vector>

namespace kadrona::testing {

namespace {

constexpr int ThreadCount = 4;

class VisibleThreads : public cv::parallel::ParallelForAPI {
 public:
    void parallel_for(int tasks, FN_parallel_for_body_cb_t body, void* data) override {
        std::vector<std::thread> threads;
        for (int i = 0; i < ThreadCount; ++i) {
            threads.emplace_back(body, tasks * i / ThreadCount, tasks * (i + 1) / ThreadCount,
                                 data);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    int getThreadNum() const override { return 0; }
    int getNumThreads() const override { return ThreadCount; }
    int setNumThreads(int /*count*/) override { return ThreadCount; }
    const char* getName() const override { return "visible threads"; }
};

}  // namespace

void UseVisibleThreads() {
    cv::parallel::setParallelForBackend(std::make_shared<VisibleThreads>());
}

}  // namespace kadrona::testing
