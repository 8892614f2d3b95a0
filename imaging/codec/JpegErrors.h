#pragma once

#include <array>
#include <csetjmp>
#include <cstdio>

// Needs what <cstdio> declares.
#include <jpeglib.h>

namespace kadrona::imaging {

/// libjpeg's error manager, whose own ends the program: an error ends the step that calls libjpeg,
/// a warning or a trace is passed over. Whoever derives from it may set other handlers. It must not
/// move while libjpeg knows it.
class JpegErrors : public jpeg_error_mgr {
 public:
    JpegErrors() : jpeg_error_mgr() {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr info) { Leave(info); };
        output_message = [](j_common_ptr) {};
    }

    /// Runs a step that calls libjpeg; false where it ended in an error. libjpeg leaves a failing
    /// step by longjmp: no object with a destructor may live in it, and it must not throw.
    template <typename Step>
    bool Run(const Step& step) {
        if (setjmp(exit_) != 0) {
            return false;
        }
        step();
        return true;
    }

    /// Ends the step that runs.
    [[noreturn]] static void Leave(j_common_ptr info) {
        std::longjmp(static_cast<JpegErrors*>(info->err)->exit_, 1);
    }

    /// libjpeg's own words, in English, for the error that ended a step of `info`.
    static std::array<char, JMSG_LENGTH_MAX> Message(j_common_ptr info) {
        std::array<char, JMSG_LENGTH_MAX> message{};
        info->err->format_message(info, message.data());
        return message;
    }

 private:
    std::jmp_buf exit_ = {};
};

}  // namespace kadrona::imaging
