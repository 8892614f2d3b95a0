#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace kadrona::core {

enum class CheckState {
    Met,
    Missed,
    Guidance,    ///< nobody publishes a rule: value and band are shown, nothing is judged
    Unmeasured,  ///< a rule is published, and nothing was measured to judge by it
};

/// One line of the check.
struct CheckLine {
    QString name;   ///< for programs, e.g. "headHeight"
    QString label;  ///< for people, German
    CheckState state = CheckState::Guidance;
    std::optional<double> value;
    std::optional<double> minimum;
    std::optional<double> maximum;
    QString unit;
    QString source;
    QString sourceName;  ///< the same for a narrow column
    QString note;        ///< what the figures cannot say, German; often empty
    /// What is wrong beside the figures, German: the line is missed though they may be kept.
    QString fault;
    int decimals = 1;
    /// For programs: whether there is what a line without a figure names; people read the note.
    std::optional<bool> found;
    bool isWanted = true;  ///< what `found` tells of
};

/// "erfüllt", "nicht erfüllt", "nur Richtwert" or "nicht gemessen".
QString StateText(CheckState state);

/// Besides the word and a colour: "✓" met, "✗" missed, "!" outside a guidance, which is worth a
/// look, no more, "·" else.
QString StateSign(const CheckLine& line);

/// Each source once, in whole where its name is not, and what the letters of evidence mean.
QString SourcesText(const std::vector<CheckLine>& lines);

/// "29,4 mm statt 32 bis 36 mm", or the value alone where there is no band; a fault before them, a
/// note where there is no value.
QString FigureText(const CheckLine& line);
/// "32 bis 36 mm", "mindestens 90 px"; empty where there is no band.
QString BandText(const CheckLine& line);
/// True where the value, as it is shown, lies outside its band, where what is wanted is not there,
/// and where what is not wanted is; false where nothing was measured.
bool IsOutside(const CheckLine& line);
/// The value as it is shown and judged, rounded to the line's decimals.
std::optional<double> ShownValue(const CheckLine& line);
/// "29,4"; empty where nothing was measured.
QString NumberText(const CheckLine& line);
/// "29,4 mm"; empty where nothing was measured.
QString ValueText(const CheckLine& line);

}  // namespace kadrona::core
