#include "imaging/face/PupilRegression.h"

#include <QFile>
#include <QTextStream>
#include <opencv2/core.hpp>

#include "imaging/face/GradientGrid.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

// Resources of a static library are linked in only where they are asked for, and the macro must
// stand outside any namespace.
static void LinkPupilTable() {
    Q_INIT_RESOURCE(face);
}

namespace kadrona::imaging {

namespace {

/// A part of a frame, and how it is sampled.
struct View {
    QRectF area;
    double pixelsPerUnit;
    int cell;  ///< pixels
};

/// Brows, eyes, nose and mouth.
const View FaceView{QRectF(-1.125, -0.8, 2.25, 2.25), 32, 8};
/// One eye, around its middle.
const View EyeView{QRectF(-0.3, -0.2, 0.6, 0.4), 80, 4};

const View& ViewOf(PupilRegression::Kind kind) {
    return kind == PupilRegression::Pair ? FaceView : EyeView;
}

cv::Mat1f Move(const std::vector<float>& grid, const PupilRegression::Step& step) {
    return cv::Mat1f(grid).t() * step.weights + step.offsets;
}

[[noreturn]] void ThrowDamaged() {
    throw platform::FileError(u"Die Tabelle der Pupillen ist beschädigt."_s);
}

/// A line "pair SCALE" or "eye SCALE" has been read; the offsets follow, then a line for each
/// number of the grid, all as whole numbers of that scale.
PupilRegression::Step ReadStep(QTextStream& table, PupilRegression::Kind kind, double scale) {
    const int moves = PupilRegression::MoveSize(kind);
    cv::Mat1f numbers(PupilRegression::GridSize(kind) + 1, moves);
    for (float& number : numbers) {
        int whole = 0;
        table >> whole;
        number = static_cast<float>(whole * scale);
    }
    if (table.status() != QTextStream::Ok) {
        ThrowDamaged();
    }
    return {numbers.rowRange(1, numbers.rows).clone(), numbers.row(0).clone()};
}

}  // namespace

PupilRegression PupilRegression::Read(const QByteArray& table) {
    QTextStream stream(table);
    std::vector<Step> pairSteps;
    std::vector<Step> eyeSteps;
    for (QString word; !(stream >> word, word.isEmpty());) {
        double scale = 0;
        stream >> scale;
        if ((word != u"pair"_s && word != u"eye"_s) || !(scale > 0 && scale < 1)) {
            ThrowDamaged();
        }
        const bool isPair = word == u"pair"_s;
        (isPair ? pairSteps : eyeSteps).push_back(ReadStep(stream, isPair ? Pair : Eye, scale));
    }
    if (pairSteps.empty() || eyeSteps.empty()) {
        ThrowDamaged();
    }
    return PupilRegression(std::move(pairSteps), std::move(eyeSteps));
}

int PupilRegression::GridSize(Kind kind) {
    const View& view = ViewOf(kind);
    const auto cells = [&](double length) {
        return static_cast<int>(std::lround(length * view.pixelsPerUnit)) / view.cell;
    };
    return cells(view.area.width()) * cells(view.area.height()) * GradientGridDepth;
}

std::vector<float> PupilRegression::PairGrid(const FacePhoto& photo, const FaceFrame& frame) {
    return GradientGrid(photo.Sampled(frame, FaceView.area, FaceView.pixelsPerUnit), FaceView.cell);
}

std::vector<float> PupilRegression::EyeGrid(const FacePhoto& photo, const FaceFrame& frame,
                                            bool right) {
    cv::Mat eye =
        photo.Sampled(frame, EyeView.area.translated(right ? 0.5 : -0.5, 0), EyeView.pixelsPerUnit);
    if (right) {
        cv::flip(eye, eye, 1);
    }
    return GradientGrid(eye, EyeView.cell);
}

FaceFrame PupilRegression::AfterPair(const FacePhoto& photo, const FaceFrame& frame,
                                     const Step& step) {
    const cv::Mat1f move = Move(PairGrid(photo, frame), step);
    return FaceFrame::OfEyes(frame.ToPhoto({-0.5 + move(0), move(1)}),
                             frame.ToPhoto({0.5 + move(2), move(3)}));
}

FaceFrame PupilRegression::AfterEyes(const FacePhoto& photo, const FaceFrame& frame,
                                     const Step& step) {
    const cv::Mat1f left = Move(EyeGrid(photo, frame, false), step);
    const cv::Mat1f right = Move(EyeGrid(photo, frame, true), step);
    return FaceFrame::OfEyes(frame.ToPhoto({-0.5 + left(0), left(1)}),
                             frame.ToPhoto({0.5 - right(0), right(1)}));
}

FaceFrame PupilRegression::Settled(const FacePhoto& photo, FaceFrame frame) const {
    for (const Step& step : pairSteps_) {
        frame = AfterPair(photo, frame, step);
    }
    for (const Step& step : eyeSteps_) {
        frame = AfterEyes(photo, frame, step);
    }
    return frame;
}

const PupilRegression& TrainedPupils() {
    static const PupilRegression trained = [] {
        LinkPupilTable();
        QFile table(u":/face/pupils.txt"_s);
        if (!table.open(QIODevice::ReadOnly)) {
            ThrowDamaged();
        }
        return PupilRegression::Read(table.readAll());
    }();
    return trained;
}

}  // namespace kadrona::imaging
