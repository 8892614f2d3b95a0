#pragma once

#include <QByteArray>
#include <QMarginsF>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "printing/cups/service/Connection.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Queue.h"

struct ppd_file_s;

namespace kadrona::printing::cups {

class GermanTexts;
struct GutenprintSetting;

/// The names that drivers have for the tray and for the kind of paper, the usual one first.
inline constexpr std::array TrayKeywords{"InputSlot", "MediaSource", "EPIJ_FdSo", "CNInputSlot"};
inline constexpr std::array MediaTypeKeywords{"MediaType", "EPIJ_Medi", "CNMediaType"};

inline constexpr double MillimetresPerInch = 25.4;
inline constexpr double MillimetresPerPoint = MillimetresPerInch / 72;

struct DriverChoice {
    QByteArray name;
    QString label;
};

/// An option of the driver; always one of its choices holds.
struct DriverOption {
    QByteArray keyword;
    QString label;
    std::vector<DriverChoice> choices;
    QByteArray standard;

    bool Offers(const QByteArray& choice) const;
    /// For reading; the name itself of what is no choice.
    QString Label(const QByteArray& choice) const;
};

struct Paper {
    QByteArray name;
    QString label;
    /// Upright or as the driver has it, in points (1/72 inch).
    QSizeF points;
    /// What the printer cannot reach.
    QMarginsF marginPoints;

    /// Of the driver's page.
    QSizeF Millimetres() const;
    bool IsBorderless() const { return marginPoints.isNull(); }
};

/// Between which sizes a paper may be given in numbers, millimetres.
struct CustomSizes {
    QSizeF least;
    QSizeF most;
};

/// What a queue's driver can be set to, read from its description (PPD). A queue without one has no
/// options. All names are for reading: in German where the driver or this program knows a German
/// one, else in the driver's own words.
class Driver {
 public:
    /// Asks the service. Throws ServiceFailure.
    static Driver OfQueue(const Connection& connection, const Queue& queue);

    /// Reads a description. Throws ServiceFailure where it is damaged.
    explicit Driver(const QString& descriptionFile);
    Driver();
    ~Driver();
    Driver(Driver&& other) noexcept;
    Driver& operator=(Driver&& other) noexcept;

    const std::vector<DriverOption>& Options() const { return options_; }
    /// The first of several keywords that the driver has an option for; null for none.
    const DriverOption* Find(const std::vector<const char*>& keywords) const;

    const std::vector<Paper>& Papers() const { return papers_; }
    /// Nothing where the driver takes only the papers that it names.
    std::optional<CustomSizes> OwnSizes() const;
    /// Also of a size given in numbers ("Custom.100x150mm") where the driver allows it.
    std::optional<Paper> PaperNamed(const QByteArray& name) const;
    /// The paper that a printer is set to; the driver's own where it is set to none that there is.
    std::optional<Paper> PaperOf(const DeviceMode& mode) const;
    /// Of the real paper, where the driver's page is larger than it.
    QSizeF RealMillimetres(const Paper& paper) const { return GeometryOf(paper, {}).paper.size(); }
    /// The paper, and how a sheet lies on it, that a printer set to `mode` prints on. Of an unknown
    /// paper nothing is known but the orientation and the copies.
    PrinterPaper PrinterPaperOf(const DeviceMode& mode) const;
    /// The driver's own switch for printing to the paper's edges; null where that is a matter of
    /// the paper.
    const DriverOption* BorderlessSwitch() const { return Find({"StpFullBleed"}); }
    /// What decides beside the paper how a sheet lies on it (tray, borderless printing, both
    /// sides), with the choice that PrinterPaperOf takes: the one of `mode`, else the driver's own.
    /// Nothing where the paper alone decides.
    std::vector<std::pair<QByteArray, QByteArray>> PlacingChoices(const DeviceMode& mode) const;
    /// The same paper without margins where there is one; null else.
    const Paper* BorderlessVariant(const Paper& paper) const;

    /// The driver's own choice of every option.
    DeviceMode Defaults() const;
    /// Whether the driver knows the option and the choice.
    bool Knows(const QByteArray& keyword, const QByteArray& choice) const;
    /// Names of the options whose choices exclude each other.
    QStringList Conflicts(const DeviceMode& mode) const;

 private:
    struct Closer {
        void operator()(ppd_file_s* description) const;
    };

    void ReadOptions(const GermanTexts& texts);
    void ReadPapers();
    /// Sentences about paper, tray and kind of paper that were chosen once and are no more.
    QStringList MissingChoices(const DeviceMode& mode) const;
    bool PaperIsMoved(const DeviceMode& mode) const;
    PaperGeometry GeometryOf(const Paper& paper, const DeviceMode& mode) const;
    GutenprintSetting GutenprintSettingOf(const DeviceMode& mode) const;
    bool UsesFilter(const char* program) const;

    std::unique_ptr<ppd_file_s, Closer> description_;
    std::vector<DriverOption> options_;
    std::vector<Paper> papers_;
};

}  // namespace kadrona::printing::cups
