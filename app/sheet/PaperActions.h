#pragma once

#include <QHash>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <functional>
#include <optional>

#include "core/sheet/SheetTray.h"

class QWidget;

namespace kadrona::core {
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class PaperView;
class SheetSection;
class SidePanel;
class TEinstellungenFm;
class TraySection;
}  // namespace kadrona::dialogs

namespace kadrona::app {

class MainActions;
class PhotoSession;
class PrintFlow;
class ViewActions;

/// The sections "Blatt" and "Sammelblatt": what sheets are made on, and the tray of pictures that
/// wait for a sheet that they share. All that is given outlives the object.
class PaperActions : public QObject {
    Q_OBJECT

 public:
    /// What the sections work with, beside the session.
    struct Surroundings {
        QWidget& window;
        core::TData& data;
        dialogs::TEinstellungenFm& settings;
        core::UserInterface& ui;
        MainActions& actions;
        ViewActions& viewActions;
        PrintFlow& printFlow;
        dialogs::SidePanel& panel;
        dialogs::SheetSection& section;
        dialogs::TraySection& tray;
    };

    PaperActions(PhotoSession& session, const Surroundings& around);

    /// Asked before a photo is cut for the tray.
    void SetConfirmation(std::function<bool()> confirm) { confirm_ = std::move(confirm); }

    /// Tells the data module what the next sheet is made on. Where fewer photos fit than are asked
    /// for, the user is asked; false where there is to be no sheet then. Throws platform::Error.
    bool PreparePaper();

    /// What the next sheet of photos of that size, in micrometres, is made on; nothing where there
    /// is to be no sheet. Asks and throws as PreparePaper.
    std::optional<core::PaperChoice> PaperFor(const std::function<QSize()>& photoSize);

 private:
    void ConnectSections();
    void ShowSections(bool shown);
    void Update();
    void UpdateSummary();
    void UpdatePreview();
    void CutPreview();
    void UpdateTray();
    QString Summary() const;
    core::PaperChoice Choice() const;
    QImage Thumbnail(const core::CollectedItem& item);

    void acAddToSheetExecute();
    void MakeCollectedSheet();
    void TakeOutPrinted();
    void LoadTray();
    void FollowTray();
    /// Changes the tray and shows it; failures are shown.
    template <typename Change>
    void ChangeTray(Change change);

    PhotoSession& session_;
    Surroundings around_;
    std::function<bool()> confirm_;
    core::SheetTray tray_;
    QHash<qint64, QImage> thumbnails_;
    dialogs::PaperView* preview_;
    /// The cut as it is shown in the preview, upright and lying, and what it is the cut of.
    QImage upright_;
    QImage lying_;
    qint64 cutPhoto_ = 0;
    QRect cut_;
    QTimer cutting_;
    /// The collected sheet that was made last, by its pixels, and what it shows of the tray.
    qint64 madeSheet_ = 0;
    std::vector<core::TrayCopies> made_;
};

}  // namespace kadrona::app
