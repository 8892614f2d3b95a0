#pragma once

#include <QObject>
#include <QStringList>

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {
class TEinstellungenFm;
class TProfileDlgFM;
class TSchabloneFm;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;
class RotateActions;
class ViewActions;

/// Opening a photo: by dialog, by drop, with a profile; then its template. All that is given
/// outlives the object.
class OpenActions : public QObject {
    Q_OBJECT

 public:
    OpenActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                dialogs::TEinstellungenFm& settings, MainActions& actions, ViewActions& viewActions,
                RotateActions& rotateActions);
    ~OpenActions() override;

    /// Opens the first of the files, as a drop of them does.
    void OpenFiles(const QStringList& paths);

    /// Opens the bytes of an image file that has no path, as a drop of it does. It is named after
    /// `origin` and the time.
    void OpenPicture(const QByteArray& bytes, const QString& origin);

    /// Opens the original of an archived photo. It does not count as a photo of the user's folders:
    /// nobody remembers it. False where it cannot be read or is given up.
    bool OpenOriginal(const QString& path);

 Q_SIGNALS:
    /// A photo was read from this file and is layer 0 now.
    void PhotoRead(const QString& path);

 private:
    void acOpenExecute();
    void acOpenWithProfileExecute();
    void acPasteExecute();
    void ChooseAndLoad();
    void LoadImageFile(const QString& fileName);
    struct Source;
    enum class Outcome { Read, Failed, Cancelled };
    /// False where no photo was read.
    bool Load(const Source& source);
    Outcome ReadPhoto(const Source& source);
    void LeavePhotoBefore(const Source& source);
    void ChooseTemplate();

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    core::TData& data_;
    dialogs::TEinstellungenFm& settings_;
    MainActions& actions_;
    ViewActions& viewActions_;
    dialogs::TSchabloneFm* templateChooser_;
    dialogs::TProfileDlgFM* profileChooser_;
};

}  // namespace kadrona::app
