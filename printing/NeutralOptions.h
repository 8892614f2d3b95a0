#pragma once

#include <array>

namespace kadrona::printing {

/// An option that would scale, turn, mirror, label, add or hold back a page, and the value with
/// which it does nothing.
struct NeutralOption {
    const char* keyword;
    const char* neutral;
};

/// Sent with every job, because the administrator may have set a queue to anything else. The
/// sources are RFC 8011 and the PWG's job extensions (5100.7, 5100.13), and cups-filters' manual of
/// its page filter (pdftopdf) for those without a standard.
inline constexpr std::array ServiceOptions{
    NeutralOption{"print-scaling", "none"},       // PWG 5100.13, 5.2
    NeutralOption{"fit-to-page", "false"},        // cups-filters
    NeutralOption{"landscape", "false"},          // cups-filters
    NeutralOption{"orientation-requested", "3"},  // RFC 8011, 5.2.10
    NeutralOption{"number-up", "1"},              // RFC 8011, 5.2.9
    NeutralOption{"booklet", "false"},            // cups-filters
    NeutralOption{"mirror", "false"},             // cups-filters
    NeutralOption{"page-border", "none"},         // cups-filters
    NeutralOption{"page-label", ""},              // cups-filters
    NeutralOption{"page-ranges", "1-1"},          // RFC 8011, 5.2.7
    NeutralOption{"page-set", "all"},             // cups-filters
    NeutralOption{"job-hold-until", "no-hold"},   // RFC 8011, 5.2.2
    NeutralOption{"job-sheets", "none,none"},     // RFC 8011, 5.2.3
};

/// Set where the driver has the option and the choice.
inline constexpr std::array DriverOptions{
    // Gutenprint's "Shrink Page If Necessary to Fit Borders": its own standard makes a page smaller
    // that is larger than what the printer reaches (Gutenprint, src/cups/genppd.c).
    NeutralOption{"StpiShrinkOutput", "Crop"},
    // Gutenprint's borderless printing on dye-sublimation printers: without it the page is moved by
    // the upper margin (measured: bench/measure-printers).
    NeutralOption{"StpBorderless", "True"},
    // Gutenprint on Canon's printers with the command for it: the printer itself turns the page
    // (main/print-canon.c, canon_init_setESC_v).
    NeutralOption{"StpOrientation", "Portrait"},
    // Adobe, PostScript Printer Description File Format 4.3, 5.13.
    NeutralOption{"MirrorPrint", "False"},
    NeutralOption{"NegativePrint", "False"},
};

/// A driver whose filter enlarges a borderless page beyond the paper and cannot be told not to.
struct SpreadingDriver {
    /// Name of the program in the driver's description.
    const char* filter;
    /// By how much the page grows at each side, in inches.
    double left;
    double top;
    double right;
    double bottom;
};

/// Measured on the raster that the drivers send (bench/measure-printers).
inline constexpr std::array SpreadingDrivers{
    // Epson's ESC/P-R: 36, 42, 36 and 70 dots of 360 in an inch, the same for every paper.
    SpreadingDriver{"epson-escpr-wrapper", 36.0 / 360, 42.0 / 360, 36.0 / 360, 70.0 / 360},
};

}  // namespace kadrona::printing
