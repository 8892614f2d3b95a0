#pragma once

#include <QObject>
#include <QRect>
#include <optional>
#include <vector>

#include "app/face/CheckReport.h"
#include "core/check/PhotoCheck.h"

class QWidget;

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class CheckSection;
class SidePanel;
}  // namespace kadrona::dialogs

namespace kadrona::app {

class MainActions;
class PhotoFace;
class PhotoSession;

/// Checks the photo in its template: live in the section "Prüfung", before a cut, and as a report
/// for the customer. All that is given outlives the object.
class CheckPanel : public QObject {
    Q_OBJECT

 public:
    CheckPanel(PhotoSession& session, PhotoFace& face, QWidget& window, core::TData& data,
               const core::Settings& settings, core::UserInterface& ui, MainActions& actions,
               dialogs::SidePanel& panel, dialogs::CheckSection& section);

    /// True where nothing that is published is missed, where the profile does not ask, or where the
    /// user wants the cut all the same. A photo without a face is asked about while the check is
    /// shown; else nobody said that it is a portrait, and CutRemark() tells of it.
    bool ConfirmCut();
    /// The same where the cut goes elsewhere and the photo stays open. Once it is cut, nothing is
    /// asked.
    bool MayCut();
    /// What there is to say once the confirmed cut is made; often empty.
    QString CutRemark() const;

 Q_SIGNALS:
    /// The lines of the template measure the head up to there.
    void CrownMeasured(core::Crown crown);

 private:
    void acShowCheckExecute();
    void FollowSession();
    void ShowLines();
    std::vector<core::CheckLine> Lines() const;
    void LoadFigures();
    void ShowKept();
    bool IsChecking() const;
    void KeepReport();
    core::Crown MeasuredCrown() const;
    void Refresh();
    CheckReport Report();
    void ForgetOtherPhoto();
    void SaveReport();
    void PrintReport();

    PhotoSession& session_;
    PhotoFace& face_;
    QWidget& window_;
    core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    MainActions& actions_;
    dialogs::SidePanel& panel_;
    dialogs::CheckSection& section_;
    /// As the photo was last checked, for the sheet that is made of it; its pixels from the cut on.
    std::optional<CheckReport> last_;
    bool faceless_ = false;  ///< the cut is of a photo without a face, about which nobody was asked
    QString lastName_;
    std::optional<core::TemplateRow> figures_;
    /// The template that figures_ were asked of, with or without an answer.
    std::optional<QString> figuresOf_;
};

}  // namespace kadrona::app
