#include <sys/mman.h>
#include <unistd.h>

#include <QtGlobal>

#include "printing/cups/service/Driver.h"

using namespace kadrona::printing::cups;

namespace {

/// What the set-up dialog and a job ask of a driver.
void Use(const Driver& driver) {
    const DeviceMode mode = driver.Defaults();
    for (const DriverOption& option : driver.Options()) {
        if (!option.Offers(option.standard)) {
            qFatal("the standard of an option is none of its choices");
        }
        for (const DriverChoice& choice : option.choices) {
            if (!driver.Knows(option.keyword, choice.name)) {
                qFatal("a choice is not known");
            }
        }
    }
    for (const Paper& paper : driver.Papers()) {
        if (!driver.PaperNamed(paper.name)) {
            qFatal("a paper is not found by its name");
        }
        driver.BorderlessVariant(paper);
    }
    driver.PaperNamed("Custom.100x150mm");
    driver.PrinterPaperOf(mode);
    driver.Conflicts(mode);
    driver.BorderlessSwitch();
}

}  // namespace

/// The library loses a text or two of a description that it refuses; the tests look for leaks of
/// ours.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

/// The input is a printer description (PPD) with the texts of its options.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const int file = memfd_create("description", 0);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != ssize_t(size)) {
        qFatal("the input cannot be written");
    }
    try {
        Use(Driver(QStringLiteral("/proc/self/fd/%1").arg(file)));
    } catch (const std::exception&) {
        // A damaged description is refused.
    }
    return 0;
}
