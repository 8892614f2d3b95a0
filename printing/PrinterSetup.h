#pragma once

#include <QString>
#include <optional>

#include "printing/PrinterLayer.h"

namespace kadrona::printing {

/// Keeps the current printer of a layer with all its options in a file and brings it back. The
/// layout stands in docs/file-formats.md; what the device mode block holds is the layer's matter.
class TPrinterSetup {
 public:
    /// `layer` outlives the object.
    explicit TPrinterSetup(PrinterLayer& layer) : layer_(layer) {}

    /// Writes the current printer. Names longer than 32 UTF-16 units are cut. Throws PrinterError
    /// where there is no printer, platform::FileError where the file cannot be written; an older
    /// file then stays as it was.
    void SaveToFile(const QString& fileName) const;

    /// Makes the stored printer the current one; a missing file does nothing. Throws
    /// platform::FileError for a file that cannot be read or ends early and what
    /// PrinterLayer::SetCurrentPrinter throws; the current printer then stays.
    void LoadFromFile(const QString& fileName);

    /// What such a file keeps; nothing where it is missing. Throws platform::FileError as above.
    static std::optional<PrinterChoice> Stored(const QString& fileName);

 private:
    PrinterLayer& layer_;
};

}  // namespace kadrona::printing
