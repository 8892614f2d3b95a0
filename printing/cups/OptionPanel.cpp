#include "printing/cups/OptionPanel.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSpinBox>
#include <algorithm>
#include <array>

#include "printing/NeutralOptions.h"
#include "printing/cups/CustomPaper.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// "10 x 15 cm (102 × 152 mm)"
QString PaperText(const Driver& driver, const Paper& paper) {
    const QSize size = driver.RealMillimetres(paper).toSize();
    return u"%1 (%2 × %3 mm)"_s.arg(paper.label).arg(size.width()).arg(size.height());
}

/// The paper that `variant` is the borderless one of; null for any other.
const Paper* PaperWithBorder(const Driver& driver, const Paper& variant) {
    const auto found =
        std::find_if(driver.Papers().begin(), driver.Papers().end(), [&](const Paper& paper) {
            const Paper* borderless = driver.BorderlessVariant(paper);
            return borderless != nullptr && borderless->name == variant.name;
        });
    return found == driver.Papers().end() ? nullptr : &*found;
}

/// Begins the names of papers of an own size, and stands for them in the list.
const QByteArray CustomName = "Custom";

constexpr std::array OrientationRows{Orientation::Automatic, Orientation::Upright,
                                     Orientation::Turned};

}  // namespace

OptionPanel::OptionPanel(QWidget* parent) : QWidget(parent), form_(new QFormLayout(this)) {
    form_->setContentsMargins({});
    form_->setHorizontalSpacing(16);
    form_->setVerticalSpacing(8);
    form_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    paperBox_ = AddPaperRows(*form_);
    AddOrientationRow(*form_);
    AddOptionRow(*form_, u"Papier&fach"_s, u"TrayBox"_s,
                 {TrayKeywords.begin(), TrayKeywords.end()});
    AddOptionRow(*form_, u"Papierar&t"_s, u"MediaTypeBox"_s,
                 {MediaTypeKeywords.begin(), MediaTypeKeywords.end()});
    AddOptionRow(*form_, u"&Qualität"_s, u"QualityBox"_s,
                 {"cupsPrintQuality", "OutputMode", "PrintQuality", "StpQuality", "Quality",
                  "EPIJ_Qual", "CNQuality", "Resolution"});
    AddOptionRow(*form_, u"Far&be"_s, u"ColorBox"_s,
                 {"ColorModel", "ColorMode", "print-color-mode", "StpColorCorrection",
                  "HPColorMode", "EPIJ_Ink_", "BRMonoColor", "CNColorMode", "SelectColor"});
    AddOptionRow(*form_, u"&Doppelseitig"_s, u"DuplexBox"_s,
                 {"Duplex", "EFDuplex", "EFDuplexing", "KD03Duplex", "JCLDuplex"});
    AddCopiesRow(*form_);
}

QComboBox* OptionPanel::AddPaperRows(QFormLayout& form) {
    auto* box = new QComboBox;
    box->setObjectName(u"PaperBox"_s);
    form.addRow(u"&Papierformat"_s, box);
    borderlessBox_ = new QCheckBox(u"&Randlos drucken"_s);
    borderlessBox_->setObjectName(u"BorderlessBox"_s);
    form.addRow(QString(), borderlessBox_);
    customPaper_ = new CustomPaper;
    customPaper_->setObjectName(u"CustomPaper"_s);
    form.insertRow(1, u"Breite × Höhe"_s, customPaper_);
    const auto store = [this] {
        ShowPaper();
        StorePaper();
    };
    connect(box, &QComboBox::activated, this, store);
    connect(customPaper_, &CustomPaper::Changed, this, store);
    connect(borderlessBox_, &QCheckBox::clicked, this, &OptionPanel::StorePaper);
    return box;
}

void OptionPanel::AddOptionRow(QFormLayout& form, const QString& caption, const QString& name,
                               const std::vector<const char*>& keywords) {
    auto* box = new OptionBox;
    box->setObjectName(name);
    form.addRow(caption, box);
    fields_.push_back({box, keywords});
    connect(box, &QComboBox::activated, this, [this, box] {
        box->Store(*mode_);
        Q_EMIT ModeChanged();
    });
}

void OptionPanel::AddOrientationRow(QFormLayout& form) {
    orientationBox_ = new QComboBox;
    orientationBox_->setObjectName(u"OrientationBox"_s);
    orientationBox_->addItems({u"Automatisch"_s, u"Hochformat"_s, u"Querformat"_s});
    form.addRow(u"A&usrichtung"_s, orientationBox_);
    connect(orientationBox_, &QComboBox::activated, this, [this](int index) {
        mode_->SetSheetOrientation(OrientationRows.at(static_cast<size_t>(index)));
        Q_EMIT ModeChanged();
    });
}

void OptionPanel::AddCopiesRow(QFormLayout& form) {
    copiesBox_ = new QSpinBox;
    copiesBox_->setObjectName(u"CopiesBox"_s);
    copiesBox_->setRange(1, MostCopies);
    form.addRow(u"&Exemplare"_s, copiesBox_);
    connect(copiesBox_, &QSpinBox::valueChanged, this, [this](int count) {
        mode_->Set(DeviceMode::Copies, QByteArray::number(count));
        Q_EMIT ModeChanged();
    });
}

void OptionPanel::ShowMode(const Driver& driver, DeviceMode& mode) {
    driver_ = &driver;
    mode_ = &mode;
    covered_ = {"PageSize"};
    // Jobs set these whatever is chosen.
    for (const NeutralOption& option : DriverOptions) {
        covered_.emplace_back(option.keyword);
    }
    if (driver.BorderlessSwitch() != nullptr) {
        covered_.push_back(driver.BorderlessSwitch()->keyword);
    }
    ShowPapers();
    const auto* row =
        std::find(OrientationRows.begin(), OrientationRows.end(), mode.SheetOrientation());
    orientationBox_->setCurrentIndex(static_cast<int>(row - OrientationRows.begin()));
    // A sheet on a paper that is not known lies as it is.
    form_->setRowVisible(orientationBox_, !driver.Papers().empty());
    for (const Field& field : fields_) {
        const DriverOption* option = driver.Find(field.keywords);
        form_->setRowVisible(field.box, option != nullptr);
        if (option != nullptr) {
            field.box->ShowOption(*option, mode);
            covered_.push_back(option->keyword);
        }
    }
    const QSignalBlocker blocker(copiesBox_);
    copiesBox_->setValue(mode.CopyCount());
}

bool OptionPanel::Covers(const QByteArray& keyword) const {
    return std::find(covered_.begin(), covered_.end(), keyword) != covered_.end();
}

void OptionPanel::ShowPapers() {
    paperBox_->clear();
    for (const Paper& paper : driver_->Papers()) {
        if (PaperWithBorder(*driver_, paper) == nullptr) {
            paperBox_->addItem(PaperText(*driver_, paper), paper.name);
        }
    }
    form_->setRowVisible(paperBox_, paperBox_->count() > 0);
    const std::optional<Paper> chosen = driver_->PaperOf(*mode_);
    if (const std::optional<CustomSizes> sizes = driver_->OwnSizes()) {
        customPaper_->Show(*sizes, chosen ? chosen->Millimetres() : sizes->least);
        paperBox_->addItem(u"Eigenes Format"_s, CustomName);
    }
    if (chosen && chosen->name.startsWith(CustomName)) {
        paperBox_->setCurrentIndex(paperBox_->findData(CustomName));
        borderlessBox_->setChecked(false);
    } else if (chosen) {
        const Paper* listed = PaperWithBorder(*driver_, *chosen);
        const QByteArray name = listed == nullptr ? chosen->name : listed->name;
        if (paperBox_->findData(name) < 0) {
            paperBox_->addItem(PaperText(*driver_, *chosen), name);
        }
        paperBox_->setCurrentIndex(paperBox_->findData(name));
        borderlessBox_->setChecked(listed != nullptr);
    }
    ShowPaper();
}

void OptionPanel::ShowPaper() {
    form_->setRowVisible(customPaper_, paperBox_->currentData().toByteArray() == CustomName);
    ShowBorderless();
    ShowOrientations();
}

/// As the driver names it.
QByteArray OptionPanel::ChosenPaper() const {
    const QByteArray name = paperBox_->currentData().toByteArray();
    return name == CustomName ? customPaper_->PaperName() : name;
}

/// The names of both orientations, the driver's own way of the paper first: some have a paper that
/// is wider than high.
void OptionPanel::ShowOrientations() {
    const std::optional<Paper> paper = driver_->PaperNamed(ChosenPaper());
    const bool isWide = paper && paper->points.width() > paper->points.height();
    orientationBox_->setItemText(1, isWide ? u"Querformat"_s : u"Hochformat"_s);
    orientationBox_->setItemText(2, isWide ? u"Hochformat"_s : u"Querformat"_s);
}

/// Some drivers have a switch for it, others a paper of its own; with all others the paper says
/// whether there are margins.
void OptionPanel::ShowBorderless() {
    const std::optional<Paper> paper = driver_->PaperNamed(ChosenPaper());
    const DriverOption* own = driver_->BorderlessSwitch();
    const bool variant = paper && driver_->BorderlessVariant(*paper) != nullptr;
    if (own != nullptr) {
        const QByteArray chosen = mode_->Value(own->keyword);
        borderlessBox_->setChecked((own->Offers(chosen) ? chosen : own->standard) == "True");
    } else if (!variant) {
        borderlessBox_->setChecked(paper && paper->IsBorderless());
    }
    borderlessBox_->setEnabled(own != nullptr || variant);
    form_->setRowVisible(borderlessBox_, paper.has_value());
}

void OptionPanel::StorePaper() {
    const std::optional<Paper> paper = driver_->PaperNamed(ChosenPaper());
    const Paper* borderless = paper ? driver_->BorderlessVariant(*paper) : nullptr;
    const bool isBorderless = borderlessBox_->isChecked();
    if (const DriverOption* own = driver_->BorderlessSwitch()) {
        mode_->Set(own->keyword, isBorderless ? "True" : "False");
        borderless = nullptr;
    }
    mode_->Set("PageSize",
               borderless != nullptr && isBorderless ? borderless->name : ChosenPaper());
    Q_EMIT ModeChanged();
}

}  // namespace kadrona::printing::cups
