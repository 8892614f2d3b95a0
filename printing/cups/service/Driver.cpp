#include "printing/cups/service/Driver.h"

#include <cups/ppd.h>

#include <algorithm>

#include "platform/HarmlessText.h"
#include "platform/SystemReason.h"
#include "printing/NeutralOptions.h"
#include "printing/cups/service/GermanTexts.h"
#include "printing/cups/service/GutenprintPapers.h"
#include "printing/cups/service/OptionTexts.h"
#include "printing/cups/service/TemporaryFile.h"

// The description is the only source that has every option of a driver. Its functions are marked as
// old since 2012, for they leave libcups with version 3, into a library of their own.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// Repeats the paper for drivers of old printers; the print service sets it by itself.
constexpr const char* PaperAgain = "PageRegion";

/// Several times what real drivers have; each becomes a control, or a line of one.
constexpr int MostOptions = 500;
constexpr int MostChoices = 1000;
/// Each begins with an asterisk. libcups needs seconds for so many choices of one option.
constexpr int MostLines = 30'000;

/// The driver's German text, else this program's for the driver's own text, else that or the name.
QString Label(const QString& german, const char* ownText, const char* name) {
    const QString own = DescriptionText(ownText);
    return platform::HarmlessLine(!german.isEmpty() ? german
                                  : own.isEmpty()   ? QString::fromUtf8(name)
                                                    : InGerman(own));
}

DriverOption OptionOf(const GermanTexts& texts, const ppd_option_t& read) {
    DriverOption option{read.keyword,
                        Label(texts.OfOption(read.keyword), read.text, read.keyword),
                        {},
                        read.defchoice};
    for (int i = 0; i < std::min(read.num_choices, MostChoices); ++i) {
        const ppd_choice_t& choice = read.choices[i];
        // What needs numbers beside it cannot be chosen from a list.
        if (qstrcmp(choice.choice, "Custom") != 0) {
            option.choices.push_back(
                {choice.choice,
                 Label(texts.OfChoice(read.keyword, choice.choice), choice.text, choice.choice)});
        }
    }
    if (!option.Offers(option.standard) && !option.choices.empty()) {
        option.standard = option.choices.front().name;
    }
    return option;
}

bool Holds(const std::vector<DriverOption>& options, const QByteArray& keyword) {
    return std::any_of(options.begin(), options.end(),
                       [&](const DriverOption& option) { return option.keyword == keyword; });
}

/// An option that a broken description names twice counts once: a job can carry only one value.
void CollectOptions(const GermanTexts& texts, const ppd_group_t& group,
                    std::vector<DriverOption>& options) {
    for (int i = 0; i < group.num_options; ++i) {
        const char* keyword = group.options[i].keyword;
        if (qstrcmp(keyword, PaperAgain) != 0 && !Holds(options, keyword)) {
            DriverOption option = OptionOf(texts, group.options[i]);
            if (!option.choices.empty()) {
                options.push_back(std::move(option));
            }
        }
    }
    for (int i = 0; i < group.num_subgroups; ++i) {
        CollectOptions(texts, group.subgroups[i], options);
    }
}

/// The print service names the borderless papers of printers without a driver "4x6.Borderless".
QString PaperLabel(const QString& label) {
    const QString borderless = u".Borderless"_s;
    return label.endsWith(borderless) ? label.chopped(borderless.size()) + u" randlos"_s : label;
}

Paper PaperOfSize(const ppd_size_t& size, const QString& label) {
    // Distances from the left and the lower edge; drivers round them.
    const auto margin = [](double points) { return points < 0.1 ? 0.0 : points; };
    return {size.name,
            label,
            {size.width, size.length},
            {margin(size.left), margin(size.length - size.top), margin(size.width - size.right),
             margin(size.bottom)}};
}

QByteArray ChosenOf(const DriverOption& option, const DeviceMode& mode) {
    const QByteArray chosen = mode.Value(option.keyword);
    return option.Offers(chosen) ? chosen : option.standard;
}

}  // namespace

bool DriverOption::Offers(const QByteArray& choice) const {
    return std::any_of(choices.begin(), choices.end(),
                       [&](const DriverChoice& offered) { return offered.name == choice; });
}

QString DriverOption::Label(const QByteArray& choice) const {
    const auto found =
        std::find_if(choices.begin(), choices.end(),
                     [&](const DriverChoice& offered) { return offered.name == choice; });
    return found == choices.end() ? QString::fromUtf8(choice) : found->label;
}

QSizeF Paper::Millimetres() const {
    return points * MillimetresPerPoint;
}

void Driver::Closer::operator()(ppd_file_s* description) const {
    ppdClose(description);
}

Driver::Driver() = default;
Driver::~Driver() = default;
Driver::Driver(Driver&& other) noexcept = default;
Driver& Driver::operator=(Driver&& other) noexcept = default;

Driver Driver::OfQueue(const Connection& connection, const Queue& queue) {
    const std::optional<QByteArray> description = connection.Fetch(queue.Resource() + ".ppd");
    if (!description) {
        return {};
    }
    if (description->count("OpenUI") > MostOptions || description->count('*') > MostLines) {
        throw ServiceFailure(u"Die Beschreibung des Druckertreibers hat zu viele Einstellungen."_s);
    }
    QTemporaryFile file;
    CreateTemporaryFile(file);
    if (file.write(*description) != description->size() || !file.flush()) {
        throw ServiceFailure(u"Die Beschreibung des Druckers kann nicht abgelegt werden: %1."_s.arg(
            platform::SystemReason(file)));
    }
    return Driver(PathOf(file));
}

Driver::Driver(const QString& descriptionFile)
    : description_(ppdOpenFile(QFile::encodeName(descriptionFile).constData())) {
    if (!description_) {
        throw ServiceFailure(u"Die Beschreibung des Druckertreibers ist beschädigt."_s);
    }
    ReadOptions(GermanTexts(descriptionFile));
    ReadPapers();
}

void Driver::ReadOptions(const GermanTexts& texts) {
    for (int i = 0; i < description_->num_groups; ++i) {
        // What is built into the printer is the administrator's matter.
        if (qstrcmp(description_->groups[i].name, "InstallableOptions") != 0) {
            CollectOptions(texts, description_->groups[i], options_);
        }
    }
}

void Driver::ReadPapers() {
    const DriverOption* paperOption = Find({"PageSize"});
    if (paperOption == nullptr) {
        return;
    }
    for (const DriverChoice& choice : paperOption->choices) {
        const ppd_size_t* size = ppdPageSize(description_.get(), choice.name.constData());
        if (size != nullptr && size->width > 0 && size->length > 0) {
            papers_.push_back(PaperOfSize(*size, PaperLabel(choice.label)));
        }
    }
}

const DriverOption* Driver::Find(const std::vector<const char*>& keywords) const {
    for (const char* keyword : keywords) {
        const auto found =
            std::find_if(options_.begin(), options_.end(),
                         [&](const DriverOption& option) { return option.keyword == keyword; });
        if (found != options_.end()) {
            return &*found;
        }
    }
    return nullptr;
}

std::optional<CustomSizes> Driver::OwnSizes() const {
    if (!description_ || description_->variable_sizes == 0) {
        return std::nullopt;
    }
    const auto& least = description_->custom_min;
    const auto& most = description_->custom_max;
    if (!(least[0] > 0 && least[1] > 0 && most[0] > least[0] && most[1] > least[1])) {
        return std::nullopt;  // a description that is broken
    }
    return CustomSizes{QSizeF(least[0], least[1]) * MillimetresPerPoint,
                       QSizeF(most[0], most[1]) * MillimetresPerPoint};
}

std::optional<Paper> Driver::PaperNamed(const QByteArray& name) const {
    const auto found = std::find_if(papers_.begin(), papers_.end(),
                                    [&](const Paper& paper) { return paper.name == name; });
    if (found != papers_.end()) {
        return *found;
    }
    if (description_ && description_->variable_sizes != 0 && name.startsWith("Custom.")) {
        const ppd_size_t* size = ppdPageSize(description_.get(), name.constData());
        if (size != nullptr && size->width > 0 && size->length > 0) {
            Paper paper = PaperOfSize(*size, u"Eigenes Format"_s);
            paper.name = name;
            return paper;
        }
    }
    return std::nullopt;
}

std::optional<Paper> Driver::PaperOf(const DeviceMode& mode) const {
    if (std::optional<Paper> chosen = PaperNamed(mode.Value("PageSize"))) {
        return chosen;
    }
    const DriverOption* option = Find({"PageSize"});
    return option == nullptr ? std::nullopt : PaperNamed(option->standard);
}

PaperGeometry Driver::GeometryOf(const Paper& paper, const DeviceMode& mode) const {
    PaperGeometry geometry =
        PaperGeometry::Plain(paper.Millimetres(), paper.marginPoints * MillimetresPerPoint);
    geometry.name = paper.label;
    if (Find({"StpiShrinkOutput"}) != nullptr) {
        geometry.paper = NamedPaper(paper).value_or(geometry.paper);
        const GutenprintSetting gutenprint = GutenprintSettingOf(mode);
        const QMarginsF border = BorderOf(paper, gutenprint);
        const auto millimetres = [](const QRectF& points) {
            // Margins that cross leave nothing.
            return points.isValid() ? QRectF(points.topLeft() * MillimetresPerPoint,
                                             points.size() * MillimetresPerPoint)
                                    : QRectF();
        };
        geometry.reach = millimetres(QRectF({}, paper.points).marginsRemoved(border));
        geometry.spread = millimetres(SpreadOf(paper, gutenprint));
    }
    for (const SpreadingDriver& spreading : SpreadingDrivers) {
        if (paper.IsBorderless() && UsesFilter(spreading.filter)) {
            geometry.spread = geometry.spread.marginsAdded(
                QMarginsF(spreading.left, spreading.top, spreading.right, spreading.bottom) *
                MillimetresPerInch);
            geometry.reach = geometry.spread;
        }
    }
    return geometry;
}

std::vector<std::pair<QByteArray, QByteArray>> Driver::PlacingChoices(
    const DeviceMode& mode) const {
    std::vector<std::pair<QByteArray, QByteArray>> choices;
    if (Find({"StpiShrinkOutput"}) == nullptr) {
        return choices;
    }
    for (const DriverOption* option : {Find({"InputSlot"}), BorderlessSwitch(), Find({"Duplex"})}) {
        if (option != nullptr) {
            choices.emplace_back(option->keyword, ChosenOf(*option, mode));
        }
    }
    return choices;
}

GutenprintSetting Driver::GutenprintSettingOf(const DeviceMode& mode) const {
    const ppd_attr_t* model = ppdFindAttr(description_.get(), "StpDriverModelFamily", nullptr);
    const auto chosen = [&](const DriverOption* option) {
        return option == nullptr ? QByteArray() : ChosenOf(*option, mode);
    };
    const QByteArray sides = chosen(Find({"Duplex"}));
    const QByteArray borderless = chosen(BorderlessSwitch());
    using Borderless = GutenprintSetting::Borderless;
    return {model == nullptr ? QByteArray() : QByteArray(model->value), chosen(Find({"InputSlot"})),
            borderless == "True"    ? Borderless::On
            : borderless == "False" ? Borderless::Off
                                    : Borderless::Unknown,
            !sides.isEmpty() && sides != "None"};
}

bool Driver::UsesFilter(const char* program) const {
    for (int i = 0; i < description_->num_filters; ++i) {
        // "application/vnd.cups-raster 0 program"
        if (QByteArray(description_->filters[i]).endsWith(QByteArray(" ") + program)) {
            return true;
        }
    }
    return false;
}

const Paper* Driver::BorderlessVariant(const Paper& paper) const {
    // Drivers make a borderless paper a little larger than it is, up to some millimetres.
    constexpr double LargestExcess = 20;
    const auto found = std::find_if(papers_.begin(), papers_.end(), [&](const Paper& other) {
        const QSizeF excess = other.points - paper.points;
        return other.name != paper.name && other.IsBorderless() && !paper.IsBorderless() &&
               other.name.toLower().contains(paper.name.toLower()) && excess.width() > -1 &&
               excess.height() > -1 && excess.width() < LargestExcess &&
               excess.height() < LargestExcess;
    });
    return found == papers_.end() ? nullptr : &*found;
}

DeviceMode Driver::Defaults() const {
    DeviceMode mode;
    for (const DriverOption& option : options_) {
        mode.Set(option.keyword, option.standard);
    }
    return mode;
}

bool Driver::Knows(const QByteArray& keyword, const QByteArray& choice) const {
    const DriverOption* option = Find({keyword.constData()});
    return option != nullptr &&
           (option->Offers(choice) || (keyword == "PageSize" && PaperNamed(choice)));
}

QStringList Driver::Conflicts(const DeviceMode& mode) const {
    if (!description_) {
        return {};
    }
    ppdMarkDefaults(description_.get());
    for (const auto& [keyword, choice] : mode.Options()) {
        if (Knows(keyword, choice)) {
            ppdMarkOption(description_.get(), keyword.constData(), choice.constData());
        }
    }
    QStringList names;
    if (ppdConflicts(description_.get()) > 0) {
        for (const DriverOption& option : options_) {
            const ppd_option_t* marked =
                ppdFindOption(description_.get(), option.keyword.constData());
            if (marked != nullptr && marked->conflicted != 0) {
                names.append(option.label);
            }
        }
    }
    return names;
}

}  // namespace kadrona::printing::cups
