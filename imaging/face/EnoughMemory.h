#pragma once

#include <new>
#include <opencv2/core.hpp>
#include <stdexcept>

#include "platform/Error.h"

namespace kadrona::imaging {

/// What `work` returns. Throws platform::Error where memory is short, of which OpenCV tells in ways
/// of its own.
template <typename Work>
auto WithEnoughMemory(const Work& work) {
    try {
        return work();
    } catch (const cv::Exception& error) {
        if (error.code != cv::Error::StsNoMem) {
            throw;
        }
    } catch (const std::bad_alloc&) {
    } catch (const std::runtime_error&) {
        // The threads of OpenCV's library find no memory to start in.
    }
    throw platform::Error(QStringLiteral(
        "Der Arbeitsspeicher reicht nicht aus, um das Gesicht zu suchen und zu messen."));
}

}  // namespace kadrona::imaging
