// Makes imaging/face/pupils.txt out of photos with marked pupils: kadrona-train-pupils MARKS TABLE.
// MARKS is a text with a line for each face: leftX leftY rightX rightY WEIGHT PHOTO, in pixels of
// the photo. The photos are no part of the project. The same marks make the same table.

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <random>

#include "imaging/face/PupilRegression.h"
#include "imaging/pixels/MatView.h"
#include "platform/AtomicFile.h"
#include "tools/ToolMain.h"

using namespace kadrona;
using namespace kadrona::imaging;
using namespace Qt::StringLiterals;

namespace {

/// Ways in which each face is shown, half of them mirrored, and guesses tried in each.
constexpr int Variants = 6;
constexpr int GuessesEach = 4;
constexpr int PairSteps = 2;
constexpr int EyeSteps = 3;
/// How much large weights are avoided; found by leaving a quarter of the faces out in turn.
constexpr double Caution = 0.08;

struct MarkedFace {
    QImage photo;
    QPointF left;
    QPointF right;
    double weight = 1;

    double EyeDistance() const { return std::hypot((right - left).x(), (right - left).y()); }
};

/// A face, and where it is guessed to be.
struct Guess {
    std::shared_ptr<MarkedFace> face;
    std::shared_ptr<FacePhoto> photo;
    FaceFrame frame;

    QPointF Left() const { return frame.FromPhoto(face->left); }
    QPointF Right() const { return frame.FromPhoto(face->right); }
};

class Chance {
 public:
    double Normal(double deviation) { return deviation * normal_(engine_); }
    QPointF NormalPoint(double deviation) {
        const double x = Normal(deviation);
        return {x, Normal(deviation)};
    }
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(engine_);
    }

 private:
    std::mt19937 engine_{7};
    std::normal_distribution<double> normal_;
};

std::vector<MarkedFace> ReadMarks(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw platform::FileError(u"„%1“ kann nicht gelesen werden."_s.arg(path));
    }
    std::vector<MarkedFace> faces;
    for (QTextStream marks(&file); !marks.atEnd();) {
        QTextStream line(marks.readLine().toUtf8());
        double lx = 0;
        double ly = 0;
        double rx = 0;
        double ry = 0;
        double weight = 0;
        line >> lx >> ly >> rx >> ry >> weight;
        const QString photo = line.readAll().trimmed();
        faces.push_back(
            {QImage(photo).convertToFormat(QImage::Format_RGB32), {lx, ly}, {rx, ry}, weight});
        if (faces.back().photo.isNull()) {
            throw platform::FileError(u"„%1“ ist kein Foto."_s.arg(photo));
        }
    }
    return faces;
}

/// Darker or lighter by a curve, and lit from one side.
void Relight(QImage& photo, double gamma, double slope) {
    for (int y = 0; y < photo.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(photo.scanLine(y));
        for (int x = 0; x < photo.width(); ++x) {
            const double side = 1 + slope * (static_cast<double>(x) / photo.width() - 0.5);
            const auto lit = [&](int value) {
                return static_cast<int>(
                    255 * std::clamp(std::pow(value / 255.0, gamma) * side, 0.0, 1.0));
            };
            row[x] = qRgb(lit(qRed(row[x])), lit(qGreen(row[x])), lit(qBlue(row[x])));
        }
    }
}

/// The face cut out, every second time mirrored, reduced to some size, in some light.
MarkedFace Shown(const MarkedFace& marked, int variant, Chance& chance) {
    MarkedFace face = marked;
    const double eyes = face.EyeDistance();
    const QPointF middle = (face.left + face.right) / 2;
    const QRect part = QRectF(middle.x() - 2 * eyes, middle.y() - 1.5 * eyes, 4 * eyes, 3 * eyes)
                           .toRect()
                           .intersected(face.photo.rect());
    face.photo = face.photo.copy(part);
    face.left -= part.topLeft();
    face.right -= part.topLeft();
    if (variant % 2 == 1) {
        face.photo = face.photo.mirrored(true, false);
        std::swap(face.left, face.right);
        for (QPointF* eye : {&face.left, &face.right}) {
            eye->setX(face.photo.width() - 1 - eye->x());
        }
    }
    constexpr double Fewest = 14;
    constexpr double Most = 110;
    const double wanted =
        variant < 2 ? Most : std::exp(chance.Between(std::log(Fewest), std::log(Most)));
    if (const double scale = wanted / eyes; scale < 0.95) {
        face.photo = face.photo.scaled(face.photo.size() * scale, Qt::IgnoreAspectRatio,
                                       Qt::SmoothTransformation);
        for (QPointF* eye : {&face.left, &face.right}) {
            *eye = (*eye + QPointF(0.5, 0.5)) * scale - QPointF(0.5, 0.5);
        }
    }
    const double gamma = std::exp(chance.Normal(0.35));
    Relight(face.photo, gamma, variant % 3 == 2 ? chance.Normal(0.7) : 0);
    return face;
}

/// The frame with both eyes moved by chance, each for itself and both together.
FaceFrame Disturbed(const FaceFrame& frame, double each, double both, Chance& chance) {
    const QPointF shift = chance.NormalPoint(both);
    const QPointF left = QPointF(-0.5, 0) + shift + chance.NormalPoint(each);
    const QPointF right = QPointF(0.5, 0) + shift + chance.NormalPoint(each);
    return FaceFrame::OfEyes(frame.ToPhoto(left), frame.ToPhoto(right));
}

std::vector<Guess> GuessesOf(const std::vector<MarkedFace>& faces, Chance& chance) {
    std::vector<Guess> guesses;
    for (const MarkedFace& marked : faces) {
        for (int variant = 0; variant < Variants; ++variant) {
            const auto face = std::make_shared<MarkedFace>(Shown(marked, variant, chance));
            const auto photo = std::make_shared<FacePhoto>(ConstMatView(face->photo));
            const FaceFrame known = FaceFrame::OfEyes(face->left, face->right);
            for (int i = 0; i < GuessesEach; ++i) {
                guesses.push_back({face, photo, Disturbed(known, 0.07, 0.06, chance)});
            }
        }
    }
    return guesses;
}

/// Grids and the moves that each should lead to.
struct Lessons {
    cv::Mat1f grids;
    cv::Mat1f moves;
    std::vector<double> weights;

    void Add(const std::vector<float>& grid, const std::vector<float>& move, double weight) {
        grids.push_back(cv::Mat1f(grid).t());
        moves.push_back(cv::Mat1f(move).t());
        weights.push_back(weight);
    }
};

/// The map with the least squared error, large weights avoided (ridge regression).
PupilRegression::Step Learned(Lessons lessons) {
    cv::Mat1f meanGrid(1, lessons.grids.cols, 0.0F);
    cv::Mat1f meanMove(1, lessons.moves.cols, 0.0F);
    double sum = 0;
    for (int i = 0; i < lessons.grids.rows; ++i) {
        const double weight = lessons.weights.at(static_cast<size_t>(i));
        meanGrid += lessons.grids.row(i) * weight;
        meanMove += lessons.moves.row(i) * weight;
        sum += weight;
    }
    meanGrid /= sum;
    meanMove /= sum;
    for (int i = 0; i < lessons.grids.rows; ++i) {
        const double root = std::sqrt(lessons.weights.at(static_cast<size_t>(i)));
        lessons.grids.row(i) = (lessons.grids.row(i) - meanGrid) * root;
        lessons.moves.row(i) = (lessons.moves.row(i) - meanMove) * root;
    }
    cv::Mat1f square = lessons.grids.t() * lessons.grids;
    square += Caution * sum * cv::Mat1f::eye(square.size());
    PupilRegression::Step step;
    cv::solve(square, lessons.grids.t() * lessons.moves, step.weights, cv::DECOMP_CHOLESKY);
    step.offsets = meanMove - meanGrid * step.weights;
    return step;
}

Lessons LessonsOf(const std::vector<Guess>& guesses, PupilRegression::Kind kind) {
    Lessons lessons;
    for (const Guess& guess : guesses) {
        const QPointF left = guess.Left() + QPointF(0.5, 0);
        const QPointF right = guess.Right() - QPointF(0.5, 0);
        const auto f = [](double value) { return static_cast<float>(value); };
        const double weight = guess.face->weight;
        if (kind == PupilRegression::Pair) {
            lessons.Add(PupilRegression::PairGrid(*guess.photo, guess.frame),
                        {f(left.x()), f(left.y()), f(right.x()), f(right.y())}, weight);
        } else {
            lessons.Add(PupilRegression::EyeGrid(*guess.photo, guess.frame, false),
                        {f(left.x()), f(left.y())}, weight);
            lessons.Add(PupilRegression::EyeGrid(*guess.photo, guess.frame, true),
                        {f(-right.x()), f(right.y())}, weight);
        }
    }
    return lessons;
}

/// As whole numbers of a common scale; what is read back is what the next step starts from.
QByteArray Written(const PupilRegression::Step& step, PupilRegression::Kind kind) {
    constexpr double Largest = 9999;
    double most = 1e-9;
    for (const cv::Mat1f& part : {step.offsets, step.weights}) {
        most = std::max(most, cv::norm(part, cv::NORM_INF));
    }
    const double scale = most / Largest;
    QByteArray text = (kind == PupilRegression::Pair ? "pair " : "eye ") +
                      QByteArray::number(scale, 'g', 9) + "\n";
    for (const cv::Mat1f& part : {step.offsets, step.weights}) {
        for (int row = 0; row < part.rows; ++row) {
            for (int column = 0; column < part.cols; ++column) {
                text += QByteArray::number(std::lround(part(row, column) / scale));
                text += column + 1 < part.cols ? ' ' : '\n';
            }
        }
    }
    return text;
}

void Report(const char* name, const std::vector<Guess>& guesses) {
    const auto good = std::ranges::count_if(guesses, [](const Guess& guess) {
        const QPointF left = guess.Left() + QPointF(0.5, 0);
        const QPointF right = guess.Right() - QPointF(0.5, 0);
        return std::max(std::hypot(left.x(), left.y()), std::hypot(right.x(), right.y())) < 0.06;
    });
    std::printf("%s: %.1f %% of %zu guesses within 0.06\n", name,
                100.0 * static_cast<double>(good) / static_cast<double>(guesses.size()),
                guesses.size());
}

void Train(const QString& marks, const QString& table) {
    Chance chance;
    std::vector<Guess> guesses = GuessesOf(ReadMarks(marks), chance);
    QByteArray text;
    for (int i = 0; i < PairSteps + EyeSteps; ++i) {
        const auto kind = i < PairSteps ? PupilRegression::Pair : PupilRegression::Eye;
        const PupilRegression::Step step = Learned(LessonsOf(guesses, kind));
        text += Written(step, kind);
        for (Guess& guess : guesses) {
            guess.frame = kind == PupilRegression::Pair
                              ? PupilRegression::AfterPair(*guess.photo, guess.frame, step)
                              : PupilRegression::AfterEyes(*guess.photo, guess.frame, step);
        }
        Report(kind == PupilRegression::Pair ? "pair" : "eye", guesses);
        // Faces that were learned from fit better than new ones will.
        for (Guess& guess : guesses) {
            guess.frame = Disturbed(guess.frame, 0.02, 0, chance);
        }
    }
    platform::WriteFileAtomically(table, text);
}

}  // namespace

int main(int argc, char** argv) {
    return tools::ToolMain(argc, argv, u"Aufruf: kadrona-train-pupils MARKEN TABELLE"_s, Train);
}
