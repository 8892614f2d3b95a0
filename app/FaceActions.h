#pragma once

#include <QObject>
#include <QTimer>
#include <optional>
#include <vector>

#include "core/check/PhotoCheck.h"
#include "imaging/face/Face.h"
#include "imaging/face/PortraitMeasures.h"
#include "imaging/view/ViewTool.h"

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class CheckSection;
class SidePanel;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class FaceOverlay;
class MainActions;
class PhotoSession;
class ViewActions;

/// What the window does with the photo's face: offers the template's place on it, puts it there,
/// levels the head, shows the check and lets its points be moved. The face is looked for after a
/// photo was opened, and again where its pixels changed and somebody wants to know. All that is
/// given outlives the object.
class FaceActions : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    FaceActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                const core::Settings& settings, core::UserInterface& ui, MainActions& actions,
                ViewActions& viewActions, dialogs::SidePanel& panel,
                dialogs::CheckSection& section);
    ~FaceActions() override;

    /// True where nothing that is published is missed, where the profile does not ask, or where the
    /// user wants the cut all the same. A photo without a face is asked about while the check is
    /// shown; else nobody said that it is a portrait.
    bool ConfirmCut();

 private:
    void acAlignToFaceExecute();
    void acLevelHeadExecute();
    void ShowCheck(bool shown);
    void SaveReport();

    void FollowPhoto();
    void FollowSession();
    void LookAgain();
    void OfferPlace();
    void TakePlace();
    void EndOffer();
    bool FindFace();
    void ShowLines();
    std::vector<core::CheckLine> Lines() const;
    core::TemplateRow Figures() const;
    void LoadFigures();
    QRect TemplateRectangle() const;
    bool IsEditing() const;

    // Moving a point of the face
    void SetPointsMovable(bool movable);
    void Press(const imaging::view::ToolPointer& pointer) override;
    void Move(const imaging::view::ToolPointer& pointer) override;
    void Release() override;
    bool Key(const QKeyEvent& event) override;

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    MainActions& actions_;
    ViewActions& viewActions_;
    dialogs::SidePanel& panel_;
    dialogs::CheckSection& section_;
    FaceOverlay* overlay_;
    QTimer search_;
    imaging::FaceSearch found_;
    imaging::PortraitMeasures measures_;
    core::PhotoEdits edits_;
    std::optional<core::TemplateRow> figures_;
    QString figuresOf_;
    bool figuresKnown_ = false;
    QSize photoSize_;
    bool known_ = false;       ///< found_ is of the photo as it is
    bool retouching_ = false;  ///< the next change of the photo is the stamp's
    bool offered_ = false;     ///< for this photo and template
    imaging::FacePoint* held_ = nullptr;
};

}  // namespace kadrona::app
