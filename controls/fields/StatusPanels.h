#pragma once

#include <QStatusBar>

class QLabel;
class QTimer;
class QToolButton;

namespace kadrona::controls {

class PathLabel;

/// A status bar of three panels: a short fixed text, a path that takes the rest of the width and is
/// shortened in its middle when too long, and a link that can be clicked.
///
///     | Datei | /home/…/kunden/bild.jpg                    | maker's line |
///
/// Object names of the panels: "StatusPanel0", "StatusPanel1" and "StatusPanel2"; of the notice
/// that comes and goes between the last two: "StatusNotice".
class StatusPanels : public QStatusBar {
    Q_OBJECT

 public:
    explicit StatusPanels(QWidget* parent = nullptr);

    /// Widths are in pixels; a panel is made wider where its text needs it.
    void SetCaption(const QString& text, int width);
    void SetLink(const QString& text, int width);

    /// The whole path is the tool tip and can be copied from the context menu.
    void SetPath(const QString& path);
    QString Path() const;

    /// Says for some seconds what was done, beside the panels.
    void ShowNotice(const QString& text);

 Q_SIGNALS:
    /// The link was clicked or triggered by the keyboard.
    void LinkClicked();

 private:
    QLabel* caption_;
    PathLabel* path_;
    QLabel* notice_;
    QTimer* noticeEnd_;
    QToolButton* link_;
};

}  // namespace kadrona::controls
