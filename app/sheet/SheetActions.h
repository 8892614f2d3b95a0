#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <functional>

#include "core/sheet/PhotoSaver.h"

class QWidget;

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::app {

class MainActions;
class PhotoSession;
class PrintFlow;
class ViewActions;

/// "Passbilder erstellen" and "Speichern", under a name that the user chooses and quickly under a
/// generated one. All that is given outlives the object.
class SheetActions : public QObject {
    Q_OBJECT

 public:
    SheetActions(PhotoSession& session, QWidget& window, core::TData& data,
                 const core::Settings& settings, core::UserInterface& ui, MainActions& actions,
                 ViewActions& viewActions, PrintFlow& printFlow);

    /// `confirm` is asked before a photo is cut; false leaves it as it is. What `remark` returns is
    /// said quietly of the cut.
    void SetConfirmation(std::function<bool()> confirm, std::function<QString()> remark) {
        confirm_ = std::move(confirm);
        remark_ = std::move(remark);
    }

 private:
    void acCropExecute();
    void acSaveExecute();
    void acSaveImageFastExecute();
    void SaveFast(const QString& remark);
    void TellSaved(const core::PhotoSaver::Saved& saved, const QString& remark = {});
    QString FolderToSaveIn();
    bool MayShrinkTheSheet();
    QString LostByReplacing(const QString& path) const;
    /// The path, or another one that the user chose where something is lost; empty where none.
    QString PathToSaveUnder(const QString& path);

    PhotoSession& session_;
    QWidget& window_;
    core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    MainActions& actions_;
    ViewActions& viewActions_;
    PrintFlow& printFlow_;
    /// The photos that files were quickly saved from in this run, by the files' paths.
    QHash<QString, QString> savedPhotos_;
    std::function<bool()> confirm_;
    std::function<QString()> remark_;
};

}  // namespace kadrona::app
