// What is said of a driver before a sheet is printed with it.

#include "platform/HarmlessText.h"
#include "printing/NeutralOptions.h"
#include "printing/cups/service/Driver.h"
#include "printing/cups/service/GutenprintPapers.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

PrinterPaper Driver::PrinterPaperOf(const DeviceMode& mode) const {
    PrinterPaper setting;
    setting.orientation = mode.SheetOrientation();
    setting.copies = mode.CopyCount();
    if (const std::optional<Paper> paper = PaperOf(mode)) {
        setting.geometry = GeometryOf(*paper, mode);
    }
    setting.remarks = MissingChoices(mode);
    if (PaperIsMoved(mode)) {
        setting.uncalibratedRemarks.append(
            u"Randlos können die Fotos bei diesem Treiber um bis zu 2,8 mm seitlich und 2,1 mm in der Höhe verschoben sein, bis das Druckprofil kalibriert ist."_s);
    }
    if (!setting.geometry.IsKnown()) {
        setting.remarks.append(
            u"Die Größe des Papiers ist nicht bekannt; ob alle Fotos darauf passen, lässt sich nicht prüfen."_s);
    }
    for (const NeutralOption& neutral : DriverOptions) {
        const DriverOption* option = Find({neutral.keyword});
        if (option != nullptr && !option->Offers(neutral.neutral)) {
            setting.remarks.append(
                u"Die Einstellung „%1“ des Treibers lässt sich nicht abstellen; die Fotos können eine andere Größe bekommen."_s
                    .arg(option->label));
        }
    }
    return setting;
}

/// Whether it is not known where the driver's page comes to lie on the paper.
bool Driver::PaperIsMoved(const DeviceMode& mode) const {
    const std::optional<Paper> paper = PaperOf(mode);
    return paper && Find({"StpiShrinkOutput"}) != nullptr &&
           IsMovedOffCorner(*paper, GutenprintSettingOf(mode));
}

QStringList Driver::MissingChoices(const DeviceMode& mode) const {
    QStringList remarks;
    const auto check = [&](const char* keyword, const QString& what) {
        const QByteArray wanted = mode.Value(keyword);
        const DriverOption* option = Find({keyword});
        if (wanted.isEmpty() || Knows(keyword, wanted)) {
            return;
        }
        const QString gone = u"„%2“ (%1) gibt es bei diesem Drucker nicht mehr"_s.arg(
            what, platform::HarmlessLine(QString::fromUtf8(wanted)));
        remarks.append(option == nullptr
                           ? gone + u'.'
                           : gone + u"; er nimmt „%1“."_s.arg(option->Label(option->standard)));
    };
    check("PageSize", u"Papier"_s);
    for (const char* tray : TrayKeywords) {
        check(tray, u"Papierfach"_s);
    }
    for (const char* kind : MediaTypeKeywords) {
        check(kind, u"Papierart"_s);
    }
    return remarks;
}

}  // namespace kadrona::printing::cups
