#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/tone/Curves.h"

class QComboBox;
class QGridLayout;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace kadrona::imaging::view {
class ImageView;
}  // namespace kadrona::imaging::view

namespace kadrona::dialogs {

class CurveEditor;
class FacePreview;

/// "RGB Kurve": tone curves for the combined channel, red, green and blue, shown live on the main
/// view and on a small copy of the face, and presets of them, one ".acv" file each in the curves
/// folder.
class TfmRGBKurve : public QDialog {
    Q_OBJECT

 public:
    /// Reads the names of the presets once; a missing folder gives an empty list.
    explicit TfmRGBKurve(QString curvesFolder, QWidget* parent = nullptr);

    /// Starts from identity curves. Ok: the whole photo was changed by the curves. Cancel: the
    /// photo is as it was, the curves are the identity.
    controls::ModalResult ShowEx(imaging::view::ImageView& view);

    /// Applies the last curves to an image without showing anything.
    void ShowSilent(imaging::LayeredImage& image);

    const imaging::CurveSet& Curves() const;

    void reject() override;

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    QLabel* BuildPresetList();
    void BuildPresets();
    void BuildChannel();
    void BuildConfirmation();
    void SetTabOrder();
    void FillPresets();
    void cbPreset2Click();
    void btnAddClick();
    void btnUpdateClick();
    void btnDeleteClick();
    void cbChannelChange();
    void ApplyTo(imaging::LayeredImage& image) const;
    void ShowHint(bool pointRefused);
    QPushButton* Button(const QString& name, const QString& text, void (TfmRGBKurve::*click)());
    QString PresetFile(const QListWidgetItem& item) const;
    /// Throws imaging::CurveFileError for a name that no file can have.
    QString NewPresetFile(const QString& name) const;

    QString curvesFolder_;
    QGridLayout* grid_;
    CurveEditor* editor_;
    FacePreview* face_;
    QListWidget* cbPreset2_;
    QComboBox* cbChannel_;
    QLabel* hint_;
};

}  // namespace kadrona::dialogs
