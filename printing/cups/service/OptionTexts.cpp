#include "printing/cups/service/OptionTexts.h"

#include <QHash>
#include <array>

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

struct Phrase {
    const char16_t* english;
    const char16_t* german;
};

/// Words of the print service's own drivers and of the common manufacturers', in lower case.
constexpr auto Words = std::to_array<Phrase>({
    // options
    {u"page size", u"Papierformat"},
    {u"media size", u"Papierformat"},
    {u"paper size", u"Papierformat"},
    {u"media source", u"Papierfach"},
    {u"paper source", u"Papierfach"},
    {u"input tray", u"Papierfach"},
    {u"media type", u"Papierart"},
    {u"paper type", u"Papierart"},
    {u"output mode", u"Farbmodus"},
    {u"color mode", u"Farbmodus"},
    {u"color model", u"Farbmodus"},
    {u"print color mode", u"Farbmodus"},
    {u"print quality", u"Qualität"},
    {u"quality", u"Qualität"},
    {u"resolution", u"Auflösung"},
    {u"output resolution", u"Auflösung"},
    {u"2-sided printing", u"Doppelseitig"},
    {u"double-sided printing", u"Doppelseitig"},
    {u"duplex", u"Doppelseitig"},
    {u"two-sided", u"Doppelseitig"},
    {u"output bin", u"Ausgabefach"},
    {u"output tray", u"Ausgabefach"},
    {u"print scaling", u"Skalierung"},
    {u"print content optimize", u"Optimieren für"},
    {u"print rendering intent", u"Farbanpassung"},
    {u"brightness", u"Helligkeit"},
    {u"contrast", u"Kontrast"},
    {u"saturation", u"Sättigung"},
    {u"ink type", u"Tintenart"},
    {u"ink set", u"Tintensatz"},
    {u"dry time", u"Trockenzeit"},
    {u"drying time", u"Trockenzeit"},
    {u"collate", u"Exemplare sortieren"},
    {u"staple", u"Heften"},
    {u"mirror", u"Spiegeln"},
    {u"toner save", u"Toner sparen"},
    {u"full bleed", u"Randlos"},
    {u"borderless", u"Randlos"},
    // choices of many options
    {u"on", u"Ein"},
    {u"off", u"Aus"},
    {u"yes", u"Ja"},
    {u"no", u"Nein"},
    {u"true", u"Ja"},
    {u"false", u"Nein"},
    {u"none", u"Keine"},
    {u"auto", u"Automatisch"},
    {u"automatic", u"Automatisch"},
    {u"default", u"Standard"},
    {u"printer default", u"Vorgabe des Druckers"},
    {u"standard", u"Standard"},
    {u"normal", u"Normal"},
    {u"custom", u"Eigene"},
    // quality
    {u"draft", u"Entwurf"},
    {u"fast", u"Schnell"},
    {u"high", u"Hoch"},
    {u"high quality", u"Hohe Qualität"},
    {u"best", u"Beste"},
    {u"photo", u"Foto"},
    {u"maximum", u"Höchste"},
    // colour
    {u"color", u"Farbe"},
    {u"colour", u"Farbe"},
    {u"rgb", u"Farbe (RGB)"},
    {u"rgb color", u"Farbe (RGB)"},
    {u"cmyk", u"Farbe (CMYK)"},
    {u"cmyk color", u"Farbe (CMYK)"},
    {u"grayscale", u"Graustufen"},
    {u"greyscale", u"Graustufen"},
    {u"gray", u"Graustufen"},
    {u"monochrome", u"Schwarzweiß"},
    {u"black and white", u"Schwarzweiß"},
    {u"black & white", u"Schwarzweiß"},
    // two sides
    {u"off (1-sided)", u"Aus"},
    {u"long-edge", u"Lange Seite"},
    {u"long-edge (portrait)", u"Lange Seite (Hochformat)"},
    {u"long edge", u"Lange Seite"},
    {u"short-edge", u"Kurze Seite"},
    {u"short-edge (landscape)", u"Kurze Seite (Querformat)"},
    {u"short edge", u"Kurze Seite"},
    // trays
    {u"main", u"Hauptfach"},
    {u"main tray", u"Hauptfach"},
    {u"photo tray", u"Fotofach"},
    {u"tray", u"Fach"},
    {u"tray 1", u"Fach 1"},
    {u"tray 2", u"Fach 2"},
    {u"tray 3", u"Fach 3"},
    {u"upper tray", u"Oberes Fach"},
    {u"lower tray", u"Unteres Fach"},
    {u"rear tray", u"Hinteres Fach"},
    {u"cassette", u"Kassette"},
    {u"bypass", u"Mehrzweckfach"},
    {u"bypass tray", u"Mehrzweckfach"},
    {u"multi-purpose tray", u"Mehrzweckfach"},
    {u"multipurpose tray", u"Mehrzweckfach"},
    {u"manual", u"Handeinzug"},
    {u"manual feed", u"Handeinzug"},
    {u"roll", u"Rolle"},
    {u"main roll", u"Rolle"},
    {u"roll feed", u"Rolle"},
    {u"disc", u"CD/DVD"},
    {u"cd tray", u"CD-Einzug"},
    {u"selected by paper select key", u"Laut Papierwahltaste"},
    {u"automatic paper source switching", u"Automatischer Wechsel"},
    {u"continuous autofeed", u"Fortlaufender Einzug"},
    // kinds of paper
    // (PWG 5101.1, as the print service writes those of printers without a driver)
    {u"stationery", u"Normalpapier"},
    {u"photographic", u"Fotopapier"},
    {u"photographicglossy", u"Fotopapier, glänzend"},
    {u"photographichighgloss", u"Fotopapier, hochglänzend"},
    {u"photographicsemigloss", u"Fotopapier, seidenmatt"},
    {u"photographicsatin", u"Fotopapier, satiniert"},
    {u"photographicmatte", u"Fotopapier, matt"},
    {u"plain", u"Normalpapier"},
    {u"plain paper", u"Normalpapier"},
    {u"photo paper", u"Fotopapier"},
    {u"photographic paper", u"Fotopapier"},
    {u"glossy photo paper", u"Fotopapier, glänzend"},
    {u"photo paper glossy", u"Fotopapier, glänzend"},
    {u"glossy paper", u"Papier, glänzend"},
    {u"glossy", u"Glänzend"},
    {u"high-gloss photo paper", u"Fotopapier, hochglänzend"},
    {u"semi-gloss photo paper", u"Fotopapier, seidenmatt"},
    {u"semi-gloss paper", u"Papier, seidenmatt"},
    {u"semi-gloss", u"Seidenmatt"},
    {u"satin photo paper", u"Fotopapier, satiniert"},
    {u"satin", u"Satiniert"},
    {u"matte photo paper", u"Fotopapier, matt"},
    {u"matte paper", u"Papier, matt"},
    {u"matte", u"Matt"},
    {u"inkjet paper", u"Tintenstrahlpapier"},
    {u"card stock", u"Karton"},
    {u"cardstock", u"Karton"},
    {u"envelope", u"Umschlag"},
    {u"labels", u"Etiketten"},
    {u"label", u"Etikett"},
    {u"transparency", u"Folie"},
    {u"thick", u"Dick"},
    {u"thin", u"Dünn"},
    {u"recycled paper", u"Recyclingpapier"},
});

QHash<QString, QString> Dictionary() {
    QHash<QString, QString> words;
    for (const Phrase& row : Words) {
        words.insert(QStringView(row.english).toString(), QStringView(row.german).toString());
    }
    return words;
}

}  // namespace

QString InGerman(const QString& text) {
    static const QHash<QString, QString> words = Dictionary();
    return words.value(text.toLower(), text);
}

}  // namespace kadrona::printing::cups
