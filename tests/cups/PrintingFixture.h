#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <initializer_list>

#include "PrintService.h"
#include "PrintedPage.h"
#include "core/sheet/SheetLayout.h"
#include "printing/cups/CupsPrinterLayer.h"
#include "printing/cups/service/DeviceMode.h"
#include "tests/support/Errors.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::testing {

/// A sheet as the program makes it of photos of that printed size.
inline printing::PrintImage Sheet(QSizeF photoMillimetres, const core::SheetLayout& layout) {
    // Exactly 127 pixels per inch, so that small images, which are measured quickly, have the size
    // without rounding.
    constexpr int PixelsPerMillimetre = 5;
    printing::PrintImage image;
    image.tile = Painted((photoMillimetres * PixelsPerMillimetre).toSize(),
                         [](int x, int y) { return qRgb(x * 7 % 256, y * 5 % 256, x * y % 256); });
    image.columns = layout.columns;
    image.rows = layout.rows;
    image.dotsPerInch =
        core::PrintResolution(image.tile.width(), {qRound(photoMillimetres.width() * 10)}).value;
    image.title = QStringLiteral("Müller, Größe");
    return image;
}

/// A print service of its own, and what comes out of it.
class PrintingTest : public ::testing::Test {
 protected:
    void Set(printing::cups::CupsPrinterLayer& layer,
             std::initializer_list<std::pair<const char*, const char*>> options) {
        printing::PrinterChoice choice = layer.CurrentPrinter();
        printing::cups::DeviceMode mode(choice.deviceMode);
        for (const auto& [key, value] : options) {
            mode.Set(key, value);
        }
        choice.deviceMode = mode.ToBlock();
        layer.SetCurrentPrinter(choice);
    }

    PrintedPage Printed(printing::cups::CupsPrinterLayer& layer,
                        const printing::PrintImage& image) {
        layer.Print(image);
        service_.WaitForJobs();
        return Measured(service_.PrintedFile());
    }

    static std::string ErrorOf(const std::function<void()>& step) {
        return TextOf<printing::PrinterError>(step).toStdString();
    }

    PrintService service_;
};

}  // namespace kadrona::testing
