#include "dialogs/side/CheckSection.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "controls/commands/ScreenTip.h"
#include "controls/theme/Tone.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int GapBelowLine = 4;

/// The colour beside sign and word.
controls::Tone ToneOf(const core::CheckLine& line) {
    switch (line.state) {
        case core::CheckState::Met:
            return controls::Tone::Good;
        case core::CheckState::Missed:
            return controls::Tone::Bad;
        case core::CheckState::Unmeasured:
        case core::CheckState::Guidance:
            break;
    }
    return core::IsOutside(line) ? controls::Tone::Warning : controls::Tone::Muted;
}

/// Texts are set only where they changed: a drag asks at every frame.
void SetText(QLabel* label, const QString& text) {
    if (label->text() != text) {
        label->setText(text);
    }
}

QString JudgementOf(const core::CheckLine& line) {
    const QString band = core::BandText(line);
    QStringList parts;
    if (!band.isEmpty()) {
        parts << band;
    }
    if (!line.note.isEmpty()) {
        parts << line.note;
    }
    parts << core::StateText(line.state);
    return parts.join(u" · "_s);
}

}  // namespace

CheckSection::CheckSection(QWidget* parent) : QWidget(parent) {
    setObjectName(u"CheckSection"_s);
    auto* title = new QLabel(u"Prüfung"_s);
    title->setStyleSheet(u"font-weight: 600"_s);
    summary_ = new QLabel;
    summary_->setObjectName(u"CheckSummary"_s);
    summary_->setWordWrap(true);
    grid_ = new QGridLayout;
    grid_->setColumnStretch(1, 1);
    grid_->setVerticalSpacing(1);
    buttons_ = new QGridLayout;

    points_ = new QPushButton(u"&Punkte ziehen"_s);
    points_->setObjectName(u"MovePoints"_s);
    points_->setCheckable(true);
    points_->setToolTip(
        u"Pupillen, Kinn und Scheitel auf dem Foto verschieben, wo sie falsch oder nicht gefunden sind"_s);
    report_ = new QPushButton(u"&Bericht"_s);
    report_->setObjectName(u"CheckReport"_s);
    buttons_->addWidget(points_, 0, 0);
    buttons_->addWidget(report_, 0, 1);

    auto* column = new QVBoxLayout(this);
    column->addWidget(title);
    column->addWidget(summary_);
    column->addLayout(buttons_);
    column->addLayout(grid_);

    connect(points_, &QPushButton::toggled, this, &CheckSection::PointsToggled);
    auto* reportMenu = new QMenu(report_);
    QAction* save =
        reportMenu->addAction(u"Als PDF &speichern …"_s, this, &CheckSection::SaveReportAsked);
    save->setObjectName(u"SaveReport"_s);
    QAction* print = reportMenu->addAction(u"&Drucken …"_s, this, &CheckSection::PrintReportAsked);
    print->setObjectName(u"PrintReport"_s);
    report_->setMenu(reportMenu);
}

CheckSection::Row& CheckSection::RowAt(size_t index) {
    while (rows_.size() <= index) {
        const Row row{new QLabel, new QLabel, new QLabel, new QLabel, new QLabel};
        const int line = static_cast<int>(rows_.size()) * 3;
        // What belongs to a line stands nearer to it than the next one.
        grid_->setRowMinimumHeight(line + 2, GapBelowLine);
        row.label->setWordWrap(true);
        row.judgement->setWordWrap(true);
        grid_->addWidget(row.sign, line, 0, Qt::AlignTop);
        grid_->addWidget(row.label, line, 1);
        grid_->addWidget(row.number, line, 2, Qt::AlignRight | Qt::AlignTop);
        grid_->addWidget(row.unit, line, 3, Qt::AlignLeft | Qt::AlignTop);
        grid_->addWidget(row.judgement, line + 1, 1, 1, 3);
        rows_.push_back(row);
    }
    return rows_[index];
}

void CheckSection::SetLines(const std::vector<core::CheckLine>& lines, const QString& summary,
                            Points points) {
    SetText(summary_, summary);
    summary_->setVisible(!summary.isEmpty());
    for (size_t i = 0; i < std::max(lines.size(), rows_.size()); ++i) {
        Row& row = RowAt(i);
        const bool used = i < lines.size();
        for (QLabel* label : {row.sign, row.label, row.number, row.unit, row.judgement}) {
            label->setVisible(used);
        }
        if (!used) {
            continue;
        }
        const core::CheckLine& line = lines[i];
        const controls::Tone tone = ToneOf(line);
        SetText(row.sign, core::StateSign(line));
        controls::SetTone(*row.sign, tone);
        SetText(row.label, line.label);
        SetText(row.number, core::NumberText(line));
        SetText(row.unit, line.value ? line.unit : QString());
        row.number->setAccessibleName(core::ValueText(line));
        SetText(row.judgement, JudgementOf(line));
        controls::SetTone(*row.judgement, tone);
        const QString source = u"Quelle: "_s + line.source;
        row.judgement->setToolTip(controls::PlainTip(source));
        row.judgement->setAccessibleDescription(source);
    }
    report_->setEnabled(!lines.empty());
    points_->setEnabled(points == Points::Movable && !lines.empty());
}

void CheckSection::AddAction(QAction* action, const QString& text) {
    auto* button = new QPushButton(text);
    button->setObjectName(action->objectName() + u"Button"_s);
    button->setToolTip(action->toolTip());
    const int place = buttons_->count();
    buttons_->addWidget(button, place / 2, place % 2);
    // Also where the window has got others since the first ones.
    setTabOrder(buttons_->itemAt(place - 1)->widget(), button);
    button->setCheckable(action->isCheckable());
    connect(action, &QAction::toggled, button, &QPushButton::setChecked);
    button->setEnabled(action->isEnabled());
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::changed, button,
            [action, button] { button->setEnabled(action->isEnabled()); });
}

void CheckSection::SetPointsMovable(bool movable) {
    points_->setChecked(movable);
}

}  // namespace kadrona::dialogs
