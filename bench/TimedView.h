#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <algorithm>
#include <ctime>
#include <functional>
#include <vector>

#include "imaging/view/ImageView.h"

namespace kadrona::bench {

using imaging::view::ImageView;

constexpr QSize ViewSize(1920, 1080);
constexpr int Frames = 60;

inline QImage MakePhoto(QSize size) {
    QImage photo(size, QImage::Format_RGB32);
    quint32 noise = 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(photo.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            noise = noise * 1664525 + 1013904223;
            line[x] = qRgb(x >> 5, y >> 5, static_cast<int>(noise >> 24));
        }
    }
    return photo;
}

// Processor time, so that whatever else the machine does is left out.
class Watch {
 public:
    double Milliseconds() const {
        return 1000.0 * static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
    }

 private:
    std::clock_t start_ = std::clock();
};

struct Times {
    double median = 0;
    double worst = 0;
};

inline Times TimesOf(std::vector<double> milliseconds) {
    std::ranges::sort(milliseconds);
    return {milliseconds[milliseconds.size() / 2], milliseconds.back()};
}

// The view, with a watch on its painting. What the platform does to bring the frame to the screen
// is left out: it is the same for every program.
class TimedView : public ImageView {
 public:
    using ImageView::ImageView;

    // A frame: `step` changes the view; then the view paints.
    double FrameTime(const std::function<void()>& step) {
        isPainted_ = false;
        const Watch watch;
        step();
        const double changing = watch.Milliseconds();
        QElapsedTimer patience;
        patience.start();
        while (!isPainted_ && patience.elapsed() < 200) {
            QCoreApplication::processEvents();
        }
        return changing + (isPainted_ ? painting_ : 0);
    }

    Times FrameTimes(const std::function<void(int)>& step) {
        std::vector<double> milliseconds;
        for (int frame = 1; frame <= Frames; ++frame) {
            milliseconds.push_back(FrameTime([&] { step(frame); }));
        }
        return TimesOf(std::move(milliseconds));
    }

    // Paints at rest whatever is still to be painted. Gives what the single turns of the event loop
    // took, preparation and paintings, until nothing was left to do.
    Times WaitUntilPainted() {
        update();
        std::vector<double> milliseconds;
        QElapsedTimer idle;
        idle.start();
        while (idle.elapsed() < 100) {
            const Watch watch;
            QCoreApplication::processEvents();
            if (const double turn = watch.Milliseconds(); turn > 0.05) {
                milliseconds.push_back(turn);
                idle.restart();
            }
        }
        turns_ = milliseconds.size();
        return TimesOf(std::move(milliseconds));
    }
    size_t Turns() const { return turns_; }

 protected:
    void paintEvent(QPaintEvent* event) override {
        const Watch watch;
        ImageView::paintEvent(event);
        painting_ = watch.Milliseconds();
        isPainted_ = true;
    }

 private:
    double painting_ = 0;
    bool isPainted_ = false;
    size_t turns_ = 0;
};

inline void SendMouse(ImageView& view, QEvent::Type type, QPointF position) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, view.mapToGlobal(position), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&view, &event);
}

}  // namespace kadrona::bench
