#pragma once

#include <QObject>
#include <QString>

#include "imaging/document/LayeredImage.h"

namespace kadrona::app {

/// What the user works on: the picture, how far it has come, and what is known of it. Every part of
/// the window that shows or enables something follows it.
class PhotoSession : public QObject {
    Q_OBJECT

 public:
    enum class Stage {
        NoPhoto,
        PhotoOpen,  ///< also where the photo could not be read; the image is empty then
        SheetMade,
    };

    explicit PhotoSession(QObject* parent = nullptr);

    imaging::LayeredImage& Image() { return image_; }
    const imaging::LayeredImage& Image() const { return image_; }
    bool HasTemplate() const { return image_.LayerCount() >= 2; }
    /// The template's place, photo pixels; empty where there is none.
    QRect TemplateRectangle() const {
        return HasTemplate() ? image_.LayerAt(1).rectangle : QRect();
    }
    /// A photo is open and no sheet made of it.
    bool IsEditing() const { return stage_ == Stage::PhotoOpen && !image_.IsEmpty(); }

    Stage CurrentStage() const { return stage_; }
    void SetStage(Stage stage);

    /// What the status bar calls the photo: its path, or a word for one that has none.
    const QString& FileName() const { return fileName_; }
    void SetFileName(const QString& name);

    /// The photo as it is cut: what lies under the template, or once a sheet is made what it was
    /// made of, without a border. Empty where neither is known.
    imaging::Pixels Cut() const;
    /// Kept until another photo is opened.
    void KeepCut(imaging::Pixels cut) { cut_ = std::move(cut); }

    /// Index of core::SheetLayouts; -1 for none.
    int LayoutIndex() const { return layoutIndex_; }
    void SetLayoutIndex(int index);

    /// The loaded template as the catalogue calls it.
    const QString& TemplateName() const { return templateName_; }
    void SetTemplateName(const QString& name);

 Q_SIGNALS:
    /// The picture, its layers or any of the values above changed.
    void Changed();

 private:
    imaging::LayeredImage image_;
    Stage stage_ = Stage::NoPhoto;
    imaging::Pixels cut_;
    QString fileName_;
    QString templateName_;
    int layoutIndex_ = -1;
};

}  // namespace kadrona::app
