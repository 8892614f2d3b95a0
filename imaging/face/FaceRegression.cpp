#include "imaging/face/FaceRegression.h"

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <opencv2/core.hpp>

#include "imaging/face/GradientGrid.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

// Resources of a static library are linked in only where they are asked for, and the macro must
// stand outside any namespace.
static void LinkFaceTable() {
    Q_INIT_RESOURCE(face);
}

namespace kadrona::imaging {

namespace {

/// What a kind of step is called in the table, the part of a frame it sees and how that is sampled.
struct KindOfStep {
    FaceRegression::Kind kind;
    const char* name;
    QRectF area;  ///< around the eye or the place, where it looks around one
    double pixelsPerUnit;
    int cell;  ///< pixels
    int moves;
};

const QRectF EyeArea(-0.3, -0.2, 0.6, 0.4);

const std::array<KindOfStep, 7> Kinds{{
    {FaceRegression::Pair, "pair", QRectF(-1.125, -0.8, 2.25, 2.25), 32, 8, 4},
    {FaceRegression::Eye, "eye", EyeArea, 80, 4, 2},
    {FaceRegression::EyeByBoth, "eyebyboth", EyeArea, 80, 4, 2},
    {FaceRegression::Chin, "chin", QRectF(-1.1, 0.3, 2.2, 2.4), 20, 5, 1},
    {FaceRegression::NearChin, "nearchin", QRectF(-1.1, -1.1, 2.2, 1.6), 20, 5, 1},
    {FaceRegression::Crown, "crown", QRectF(-1.5, -3.2, 3, 2.9), 20, 5, 1},
    {FaceRegression::NearCrown, "nearcrown", QRectF(-1.5, -1.1, 3, 2.2), 20, 5, 1},
}};

const KindOfStep& Of(FaceRegression::Kind kind) {
    return Kinds.at(static_cast<size_t>(kind));
}

std::vector<float> GridOf(const KindOfStep& kind, const FacePhoto& photo, const FaceFrame& frame,
                          QPointF around) {
    return GradientGrid(photo.Sampled(frame, kind.area.translated(around), kind.pixelsPerUnit),
                        kind.cell);
}

/// The right eye is seen mirrored, so that both eyes learn from each other.
std::vector<float> GridOfEye(const KindOfStep& kind, const FacePhoto& photo, const FaceFrame& frame,
                             bool right, bool mirrored) {
    const QPointF eye(right ? 0.5 : -0.5, 0);
    cv::Mat seen = photo.Sampled(frame, kind.area.translated(eye), kind.pixelsPerUnit);
    if (mirrored) {
        cv::flip(seen, seen, 1);
    }
    return GradientGrid(seen, kind.cell);
}

cv::Mat1f Move(const std::vector<float>& grid, const FaceRegression::Step& step) {
    return cv::Mat1f(grid).t() * step.weights + step.offsets;
}

[[noreturn]] void ThrowDamaged() {
    throw platform::FileError(u"Die gelernte Tabelle der Gesichter ist beschädigt."_s);
}

/// A line "KIND SCALE" has been read; the offsets follow, then a line for each number of the grid,
/// all as whole numbers of that scale.
FaceRegression::Step ReadStep(QTextStream& table, FaceRegression::Kind kind, double scale) {
    cv::Mat1f numbers(FaceRegression::GridSize(kind) + 1, FaceRegression::MoveSize(kind));
    for (float& number : numbers) {
        int whole = 0;
        table >> whole;
        number = static_cast<float>(whole * scale);
    }
    if (table.status() != QTextStream::Ok) {
        ThrowDamaged();
    }
    return {kind, numbers.rowRange(1, numbers.rows).clone(), numbers.row(0).clone()};
}

}  // namespace

FaceRegression FaceRegression::Read(const QByteArray& table) {
    QTextStream stream(table);
    std::vector<Step> steps;
    for (QString word; !(stream >> word, word.isEmpty());) {
        double scale = 0;
        stream >> scale;
        const auto* kind = std::ranges::find_if(
            Kinds, [&](const KindOfStep& each) { return word == QLatin1String(each.name); });
        if (kind == Kinds.end() || !(scale > 0 && scale < 1)) {
            ThrowDamaged();
        }
        steps.push_back(ReadStep(stream, kind->kind, scale));
    }
    for (const Kind needed : {Pair, Eye, Chin, Crown}) {
        if (std::ranges::find(steps, needed, &Step::kind) == steps.end()) {
            ThrowDamaged();
        }
    }
    return FaceRegression(std::move(steps));
}

const char* FaceRegression::NameOf(Kind kind) {
    return Of(kind).name;
}

int FaceRegression::GridSize(Kind kind) {
    const KindOfStep& of = Of(kind);
    const auto cells = [&](double length) {
        return static_cast<int>(std::lround(length * of.pixelsPerUnit)) / of.cell;
    };
    const int eyes = kind == EyeByBoth ? 2 : 1;
    return eyes * cells(of.area.width()) * cells(of.area.height()) * GradientGridDepth;
}

int FaceRegression::MoveSize(Kind kind) {
    return Of(kind).moves;
}

std::vector<float> FaceRegression::Grid(Kind kind, const FacePhoto& photo, const FaceFrame& frame,
                                        bool right, double y) {
    const KindOfStep& of = Of(kind);
    if (!MovesEachEye(kind)) {
        const bool isNear = kind == NearChin || kind == NearCrown;
        return GridOf(of, photo, frame, {0, isNear ? y : 0});
    }
    std::vector<float> grid = GridOfEye(of, photo, frame, right, right);
    if (kind == EyeByBoth) {
        const std::vector<float> other = GridOfEye(of, photo, frame, !right, right);
        grid.insert(grid.end(), other.begin(), other.end());
    }
    return grid;
}

FaceFrame FaceRegression::Moved(const FaceFrame& frame, Kind kind, const cv::Mat1f& left,
                                const cv::Mat1f& right) {
    const QPointF ofRight = kind == Pair ? QPointF(left(2), left(3)) : QPointF(-right(0), right(1));
    return FaceFrame::OfEyes(frame.ToPhoto({-0.5 + left(0), left(1)}),
                             frame.ToPhoto(QPointF(0.5, 0) + ofRight));
}

FaceFrame FaceRegression::Settled(const FacePhoto& photo, FaceFrame frame) const {
    for (const Step& step : steps_) {
        if (MovesEyes(step.kind)) {
            const cv::Mat1f left = Move(Grid(step.kind, photo, frame, false, 0), step);
            const cv::Mat1f right = MovesEachEye(step.kind)
                                        ? Move(Grid(step.kind, photo, frame, true, 0), step)
                                        : cv::Mat1f();
            frame = Moved(frame, step.kind, left, right);
        }
    }
    return frame;
}

double FaceRegression::PlaceIn(const FacePhoto& photo, const FaceFrame& frame, Kind first,
                               Kind near) const {
    double y = 0;
    for (const Step& step : steps_) {
        if (step.kind == first || step.kind == near) {
            y += Move(Grid(step.kind, photo, frame, false, y), step)(0);
        }
    }
    return y;
}

double FaceRegression::ChinIn(const FacePhoto& photo, const FaceFrame& frame) const {
    constexpr double Highest = 1.2;
    constexpr double Lowest = 2.6;
    return std::clamp(PlaceIn(photo, frame, Chin, NearChin), Highest, Lowest);
}

double FaceRegression::CrownIn(const FacePhoto& photo, const FaceFrame& frame) const {
    constexpr double Highest = -3.2;
    constexpr double Lowest = -1.2;
    return std::clamp(PlaceIn(photo, frame, Crown, NearCrown), Highest, Lowest);
}

const FaceRegression& LearnedFaces() {
    static const FaceRegression learned = [] {
        LinkFaceTable();
        QFile table(u":/face/learned.txt"_s);
        if (!table.open(QIODevice::ReadOnly)) {
            ThrowDamaged();
        }
        return FaceRegression::Read(table.readAll());
    }();
    return learned;
}

}  // namespace kadrona::imaging
