#include "platform/PoolThreads.h"

#include <QSemaphore>
#include <QThreadPool>
#include <memory>

namespace kadrona::platform {

bool StartPoolThreads() {
    constexpr int PatienceMilliseconds = 2000;
    struct Gates {
        QSemaphore started;
        QSemaphore open;
    };
    const auto gates = std::make_shared<Gates>();  // a late thread may still ask
    QThreadPool& pool = *QThreadPool::globalInstance();
    pool.setExpiryTimeout(-1);
    const int count = pool.maxThreadCount();
    for (int i = 0; i < count; ++i) {
        pool.start([gates] {
            gates->started.release();
            gates->open.acquire();  // else this thread would take the next one's work
        });
    }
    const bool all = gates->started.tryAcquire(count, PatienceMilliseconds);
    gates->open.release(count);
    return all;
}

}  // namespace kadrona::platform
