#pragma once

#include <QDialog>
#include <functional>

#include "controls/messages/ModalResult.h"
#include "core/sheet/UploadFile.h"

class QDialogButtonBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QScrollArea;
class QTimer;

namespace kadrona::dialogs {

class ScrolledPage;
class UploadFiguresEdit;

/// "Datei für Online-Antrag": shows the file as it would be saved, a pixel of it on a pixel of the
/// screen, with its size and quality, made by what the template's authority publishes or by own
/// figures.
class UploadDialog : public QDialog {
    Q_OBJECT

 public:
    explicit UploadDialog(QWidget* parent = nullptr);

    /// Own figures, and whether they are used in place of the template's.
    struct Choice {
        bool own = false;
        core::UploadFigures figures;
    };

    /// `request` holds the template's figures. Ok: the user wants to save File().
    controls::ModalResult ShowEx(core::UploadRequest request, const QString& templateName,
                                 const Choice& choice);

    const core::UploadFile& File() const { return file_; }
    Choice Chosen() const;

    void accept() override;

 private:
    void ConnectControls(const QDialogButtonBox& buttons);
    void BuildPicture();
    QWidget* BuildFigures();
    void Make();
    QSize RoomForPicture();
    void FitFigures();
    void ShowFile();
    void ShowVerdict();

    core::UploadRequest request_;
    core::UploadFigures published_;
    core::UploadFile file_;
    bool made_ = false;  ///< file_ is what the figures ask for
    QScrollArea* scrolled_;
    QLabel* picture_;
    ScrolledPage* figures_;
    QRadioButton* templateFigures_;
    QRadioButton* ownFigures_;
    UploadFiguresEdit* edit_;
    QLabel* evidence_;
    QLabel* pixels_;
    QLabel* quality_;
    QLabel* bytes_;
    QLabel* state_;
    QLabel* warning_;
    QPushButton* save_;
    /// What is typed is not made at every stroke.
    QTimer* delay_;
};

}  // namespace kadrona::dialogs
