#include "printing/PrinterSetup.h"

#include "platform/AtomicFile.h"
#include "printing/PrinterSettingsFile.h"

namespace kadrona::printing {

using namespace Qt::StringLiterals;

namespace {

/// Far above what any driver keeps; bounds the memory that a foreign file can take.
constexpr qint64 MaximumFileBytes = qint64{64} * 1024 * 1024;

}  // namespace

void TPrinterSetup::SaveToFile(const QString& fileName) const {
    platform::WriteFileAtomically(fileName, PrinterSettingsBytes(layer_.CurrentPrinter()),
                                  platform::Links::Own);
}

std::optional<PrinterChoice> TPrinterSetup::Stored(const QString& fileName) {
    const auto content =
        platform::ReadFileIfThere(fileName, MaximumFileBytes, platform::Links::Own);
    if (!content) {
        return std::nullopt;
    }
    std::optional<PrinterChoice> choice = ReadPrinterSettings(*content);
    if (!choice) {
        throw platform::FileError(
            u"Die Druckereinstellungen „%1“ konnten nicht gelesen werden: Die Datei ist unvollständig oder beschädigt."_s
                .arg(fileName));
    }
    return choice;
}

void TPrinterSetup::LoadFromFile(const QString& fileName) {
    if (const std::optional<PrinterChoice> choice = Stored(fileName)) {
        layer_.SetCurrentPrinter(*choice);
    }
}

}  // namespace kadrona::printing
