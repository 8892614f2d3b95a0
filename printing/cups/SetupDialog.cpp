#include "printing/cups/SetupDialog.h"

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStringList>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "platform/HarmlessText.h"
#include "printing/cups/FurtherOptions.h"
#include "printing/cups/OptionPanel.h"
#include "printing/cups/QueueChoice.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

constexpr QSize LeastSize(760, 590);

template <typename Control>
Control* Named(Control* control, const QString& name) {
    control->setObjectName(name);
    return control;
}

QString ShownName(const Queue& queue) {
    return platform::HarmlessLine(QString::fromUtf8(queue.name));
}

/// Keeps the line break of ListText, which the application's own delegate for foreign names takes
/// for one of theirs.
class TwoLineDelegate : public QStyledItemDelegate {
    using QStyledItemDelegate::QStyledItemDelegate;
};

QString ListText(const Queue& queue) {
    const QString name = ShownName(queue);
    return (queue.isDefault ? name + u" (Standard)"_s : name) + u'\n' + StateText(queue);
}

}  // namespace

SetupDialog::SetupDialog(const std::vector<Queue>& queues, DriverSource drivers,
                         const std::optional<PrinterChoice>& current)
    : drivers_(std::move(drivers)) {
    setObjectName(u"PrinterSetupDialog"_s);
    setWindowTitle(u"Drucker einrichten"_s);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(20);
    columns->addWidget(BuildQueueList());
    columns->addWidget(BuildOptions(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(12);
    layout->addLayout(columns, 1);
    layout->addWidget(BuildButtons());
    AddQueues(queues);
    resize(sizeHint().expandedTo(LeastSize));
    Preselect(current);
    connect(queueList_, &QListWidget::currentRowChanged, this, &SetupDialog::ShowQueue);
    ShowQueue();
}

SetupDialog::~SetupDialog() = default;

QWidget* SetupDialog::BuildQueueList() {
    queueList_ = Named(new QListWidget, u"QueueList"_s);
    queueList_->setAccessibleName(u"Drucker"_s);
    queueList_->setIconSize({32, 32});
    queueList_->setItemDelegate(new TwoLineDelegate(queueList_));
    queueList_->setFixedWidth(260);
    queueList_->setTextElideMode(Qt::ElideRight);
    queueList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(queueList_, &QListWidget::itemDoubleClicked, this, [this] { ok_->click(); });
    return queueList_;
}

void SetupDialog::AddQueues(const std::vector<Queue>& queues) {
    const QIcon icon = QIcon::fromTheme(u"printer"_s);
    for (const Queue& queue : queues) {
        queues_.push_back(queue);
        auto* item = new QListWidgetItem(icon, ListText(queue), queueList_);
        item->setData(Qt::UserRole, queue.name);
        item->setToolTip(Qt::convertFromPlainText(ShownName(queue) + u'\n' + StateText(queue),
                                                  Qt::WhiteSpaceNormal));
    }
}

QWidget* SetupDialog::BuildOptions() {
    queueName_ = Named(new QLabel, u"QueueNameLabel"_s);
    QFont heading = queueName_->font();
    heading.setPointSizeF(heading.pointSizeF() * 1.2);
    heading.setBold(true);
    queueName_->setFont(heading);
    queueDetails_ = Named(new QLabel, u"QueueDetailsLabel"_s);
    for (QLabel* label : {queueName_, queueDetails_}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        // Else a word that is longer than the window is wide would widen it.
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    }
    panel_ = new OptionPanel;
    further_ = new FurtherOptions;
    connect(panel_, &OptionPanel::ModeChanged, this, &SetupDialog::ShowConflicts);
    connect(further_, &FurtherOptions::ModeChanged, this, &SetupDialog::ShowConflicts);
    connect(further_, &FurtherOptions::Toggled, this, &SetupDialog::MakeRoom);

    auto* options = new QWidget;
    auto* layout = new QVBoxLayout(options);
    layout->setContentsMargins({});
    layout->addWidget(queueName_);
    layout->addWidget(queueDetails_);
    layout->addSpacing(8);
    layout->addWidget(panel_);
    layout->addWidget(further_);
    layout->addWidget(BuildNote());
    layout->addStretch();
    return options;
}

QWidget* SetupDialog::BuildNote() {
    note_ = Named(new QLabel, u"NoteLabel"_s);
    note_->setWordWrap(true);
    note_->setTextFormat(Qt::PlainText);
    auto* icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    noteRow_ = new QWidget;
    auto* layout = new QHBoxLayout(noteRow_);
    layout->setContentsMargins({});
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(note_, 1);
    return noteRow_;
}

void SetupDialog::ShowNote(const QString& text) {
    note_->setText(text);
    noteRow_->setVisible(!text.isEmpty());
    MakeRoom();
}

QWidget* SetupDialog::BuildButtons() {
    auto* buttons = new QDialogButtonBox(this);
    ok_ = Named(buttons->addButton(u"&OK"_s, QDialogButtonBox::AcceptRole), u"OkButton"_s);
    ok_->setDefault(true);
    Named(buttons->addButton(u"&Abbrechen"_s, QDialogButtonBox::RejectRole), u"CancelButton"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

void SetupDialog::Preselect(const std::optional<PrinterChoice>& current) {
    const QByteArray chosen = current ? QueueNameOf(*current) : QByteArray();
    int row = 0;
    for (int i = 0; i < static_cast<int>(queues_.size()); ++i) {
        const Queue& queue = queues_[static_cast<size_t>(i)];
        if (queue.name == chosen) {
            modes_[queue.name] = DeviceMode(current->deviceMode);
            row = i;
            break;
        }
        if (queue.isDefault) {
            row = i;
        }
    }
    queueList_->setCurrentRow(row);
}

bool SetupDialog::RunOver(QWindow* owner) {
    setWindowModality(Qt::ApplicationModal);
    winId();  // makes the window, so that it can be told whom it belongs to
    windowHandle()->setTransientParent(owner);
    queueList_->setFocus();
    return exec() == QDialog::Accepted;
}

PrinterChoice SetupDialog::Choice() const {
    const Queue& queue = ChosenQueue();
    return ChoiceOf(queue, modes_.at(queue.name));
}

Queue& SetupDialog::ChosenQueue() {
    return queues_[static_cast<size_t>(queueList_->currentRow())];
}

const Queue& SetupDialog::ChosenQueue() const {
    return queues_[static_cast<size_t>(queueList_->currentRow())];
}

void SetupDialog::ShowQueue() {
    ShowDetails();
    try {
        Queue& queue = ChosenQueue();
        driver_ = drivers_(queue);
        ShowDetails();
        // What the driver has learned since the mode was stored gets its own choice.
        DeviceMode mode = StandardMode(queue, driver_);
        for (const auto& [key, value] : modes_[queue.name].Options()) {
            mode.Set(key, value);
        }
        modes_[queue.name] = mode;
        ShowOptions();
    } catch (const platform::Error& error) {
        panel_->hide();
        further_->hide();
        ShowNote(error.Text());
        ok_->setEnabled(false);
    }
}

void SetupDialog::ShowDetails() {
    const Queue& queue = ChosenQueue();
    const QString name = ShownName(queue);
    queueName_->setText(queue.description.isEmpty() ? name : queue.description);
    QStringList details;
    for (const QString& detail : {queue.model, queue.location, queue.stateMessage}) {
        if (!detail.isEmpty() && detail != queue.description && !details.contains(detail)) {
            details.append(detail);
        }
    }
    if (queue.isAnnounced) {
        // The service hands its ban on scaling to no printer without a driver of its own.
        details.append(
            u"im Netz gefunden, ohne eigenen Treiber: vor dem ersten Blatt kalibrieren"_s);
    }
    queueDetails_->setText(details.join(u" · "_s));
    queueDetails_->setVisible(!details.isEmpty());
}

void SetupDialog::ShowOptions() {
    DeviceMode& mode = modes_[ChosenQueue().name];
    panel_->ShowMode(driver_, mode);
    panel_->show();
    further_->ShowMode(driver_, mode,
                       [this](const QByteArray& keyword) { return panel_->Covers(keyword); });
    ok_->setEnabled(true);
    ShowConflicts();
}

void SetupDialog::ShowConflicts() {
    const QStringList names = driver_.Conflicts(modes_[ChosenQueue().name]);
    const QString noPapers =
        driver_.Papers().empty()
            ? u"Der Treiber nennt keine Papiergrößen. Ob die Fotos auf das Papier passen, lässt sich vor dem Drucken nicht prüfen."_s
            : QString();
    ShowNote(
        names.isEmpty()
            ? noPapers
            : u"Diese Einstellungen schließen einander aus: %1. Der Drucker wird eine davon nicht befolgen."_s
                  .arg(names.join(u", "_s)));
}

void SetupDialog::MakeRoom() {
    layout()->activate();
    resize(width(), std::max(sizeHint().height(), height()));
}

}  // namespace kadrona::printing::cups
