#pragma once

#include <QLatin1StringView>
#include <QSize>
#include <QString>
#include <array>
#include <optional>

namespace kadrona::core {

/// Lengths on paper are whole micrometres, so that every size that is sold or published is exact.
inline constexpr int MicrometresPerMillimetre = 1000;
inline constexpr int MicrometresPerInch = 25'400;

/// A paper that has a name. Upright, micrometres.
struct NamedPaper {
    /// As the command line takes it.
    QLatin1StringView key;
    /// As the user reads it.
    QLatin1StringView title;
    QSize size;
};

/// Profiles keep a paper as its place here, counted from 1, and OwnPaper as a size of the user's: a
/// paper that is added goes to the end, and StoredPaper says what it is kept as. 10 x 15 is 4 x 6
/// inches, as photo papers are cut.
inline constexpr std::array NamedPapers{
    NamedPaper{QLatin1StringView("10x15"), QLatin1StringView("10 x 15 cm"),
               QSize(101'600, 152'400)},
    NamedPaper{QLatin1StringView("13x18"), QLatin1StringView("13 x 18 cm"),
               QSize(127'000, 178'000)},
    NamedPaper{QLatin1StringView("100x148"), QLatin1StringView("Postkarte 100 x 148"),
               QSize(100'000, 148'000)},
    NamedPaper{QLatin1StringView("A6"), QLatin1StringView("A6"), QSize(105'000, 148'000)},
    NamedPaper{QLatin1StringView("A5"), QLatin1StringView("A5"), QSize(148'000, 210'000)},
    NamedPaper{QLatin1StringView("A4"), QLatin1StringView("A4"), QSize(210'000, 297'000)},
};

/// What a profile keeps for the grid without a paper, and for a size of the user's.
inline constexpr int NoPaper = 0;
inline constexpr int OwnPaper = 7;

/// The number by which profiles keep a paper of NamedPapers; those behind the sixth leave OwnPaper
/// out.
constexpr int StoredPaper(size_t place) {
    const int number = static_cast<int>(place) + 1;
    return number < OwnPaper ? number : number + 1;
}

/// "10x15, 13x18": what the command line takes, in one line.
QString PaperKeys();

/// A length in millimetres as it is typed, with a point or a comma and at most three decimals, in
/// micrometres. Nothing for another text, a negative length or one of a hundred metres and more.
std::optional<int> MicrometresOf(const QString& millimetres);

/// The size of a named paper, or of "WxH" in millimetres; nothing for another text. Micrometres; a
/// side may be 0.
std::optional<QSize> PaperSizeOf(const QString& text);

/// "101,6 x 152,4 mm"
QString SizeText(QSize micrometres);

/// "2,5"
QString MillimetresText(int micrometres);

/// Where a length on paper ends in pixels: the nearest whole number.
int PixelsOf(int micrometres, int dotsPerInch);

}  // namespace kadrona::core
