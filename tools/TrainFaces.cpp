// Makes imaging/face/learned.txt out of photos with marked faces: kadrona-train-faces MARKS TABLE.
// MARKS is a text with a line for each face: x and y of left pupil, right pupil, chin and crown,
// "nan nan" where the photo does not show them, WEIGHT and PHOTO, in pixels of the photo. The
// photos are no part of the project. The same marks make the same table.

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>
#include <random>

#include "imaging/face/FaceRegression.h"
#include "imaging/pixels/MatView.h"
#include "platform/AtomicFile.h"
#include "tools/ToolMain.h"

using namespace kadrona;
using namespace kadrona::imaging;
using namespace Qt::StringLiterals;

namespace {

/// How a part of a face is shown to be learned.
struct Lesson {
    QRectF around;      ///< the part of the photo that is kept, in frame units
    int variants;       ///< ways in which each face is shown, half of them mirrored
    int guessesEach;    ///< tried in each
    double largest;     ///< distance of the pupils, pixels
    double unsure;      ///< how far guesses lie from each pupil, as deviation
    double unsureBoth;  ///< and from both
};
constexpr double Smallest = 14;
const Lesson Eyes{QRectF(-2, -1.5, 4, 3), 6, 4, 110, 0.07, 0.06};
const Lesson Ends{QRectF(-3.5, -4, 7, 8), 8, 3, 60, 0.04, 0};

/// How much large weights are avoided; found by leaving a quarter of the faces out in turn.
constexpr double CautionForEyes = 0.08;
constexpr double CautionForEnds = 0.1;

struct MarkedFace {
    QImage photo;
    QPointF left;
    QPointF right;
    QPointF chin;   ///< NaN where unknown
    QPointF crown;  ///< likewise
    double weight = 1;

    std::array<QPointF*, 4> Points() { return {&left, &right, &chin, &crown}; }
    double EyeDistance() const { return std::hypot((right - left).x(), (right - left).y()); }
};

/// A face, and where it is guessed to be.
struct Guess {
    std::shared_ptr<MarkedFace> face;
    std::shared_ptr<FacePhoto> photo;
    FaceFrame frame;
    double place = 0;  ///< of chin or crown, in the frame

    QPointF Left() const { return frame.FromPhoto(face->left); }
    QPointF Right() const { return frame.FromPhoto(face->right); }
    /// How far a step of `kind` should move the place.
    double PlaceOff(FaceRegression::Kind kind) const {
        const bool isChin = kind == FaceRegression::Chin || kind == FaceRegression::NearChin;
        return frame.FromPhoto(isChin ? face->chin : face->crown).y() - place;
    }
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
        MarkedFace face;
        for (QPointF* point : face.Points()) {
            QString x;
            QString y;
            line >> x >> y;
            *point = QPointF(x.toDouble(), y.toDouble());
        }
        line >> face.weight;
        const QString photo = line.readAll().trimmed();
        face.photo = QImage(photo).convertToFormat(QImage::Format_RGB32);
        if (face.photo.isNull()) {
            throw platform::FileError(u"„%1“ ist kein Foto."_s.arg(photo));
        }
        faces.push_back(face);
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
MarkedFace Shown(const MarkedFace& marked, const Lesson& lesson, int variant, Chance& chance) {
    MarkedFace face = marked;
    const double eyes = face.EyeDistance();
    const QPointF middle = (face.left + face.right) / 2;
    const QRectF around(middle + lesson.around.topLeft() * eyes, lesson.around.size() * eyes);
    const QRect part = around.toRect().intersected(face.photo.rect());
    face.photo = face.photo.copy(part);
    for (QPointF* point : face.Points()) {
        *point -= part.topLeft();
    }
    if (variant % 2 == 1) {
        face.photo = face.photo.mirrored(true, false);
        std::swap(face.left, face.right);
        for (QPointF* point : face.Points()) {
            point->setX(face.photo.width() - 1 - point->x());
        }
    }
    const double wanted =
        variant < 2 ? lesson.largest
                    : std::exp(chance.Between(std::log(Smallest), std::log(lesson.largest)));
    if (const double scale = wanted / eyes; scale < 0.95) {
        face.photo = face.photo.scaled(face.photo.size() * scale, Qt::IgnoreAspectRatio,
                                       Qt::SmoothTransformation);
        for (QPointF* point : face.Points()) {
            *point = (*point + QPointF(0.5, 0.5)) * scale - QPointF(0.5, 0.5);
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

std::vector<Guess> GuessesOf(const std::vector<MarkedFace>& faces, const Lesson& lesson,
                             Chance& chance) {
    std::vector<Guess> guesses;
    for (const MarkedFace& marked : faces) {
        for (int variant = 0; variant < lesson.variants; ++variant) {
            const auto face = std::make_shared<MarkedFace>(Shown(marked, lesson, variant, chance));
            const auto photo = std::make_shared<FacePhoto>(ConstMatView(face->photo));
            const FaceFrame known = FaceFrame::OfEyes(face->left, face->right);
            for (int i = 0; i < lesson.guessesEach; ++i) {
                guesses.push_back(
                    {face, photo, Disturbed(known, lesson.unsure, lesson.unsureBoth, chance)});
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
FaceRegression::Step Learned(Lessons lessons, FaceRegression::Kind kind) {
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
    const double caution = FaceRegression::MovesEyes(kind) ? CautionForEyes : CautionForEnds;
    square += caution * sum * cv::Mat1f::eye(square.size());
    FaceRegression::Step step{kind, {}, {}};
    cv::solve(square, lessons.grids.t() * lessons.moves, step.weights, cv::DECOMP_CHOLESKY);
    step.offsets = meanMove - meanGrid * step.weights;
    return step;
}

Lessons LessonsOf(const std::vector<Guess>& guesses, FaceRegression::Kind kind) {
    Lessons lessons;
    const auto f = [](double value) { return static_cast<float>(value); };
    for (const Guess& guess : guesses) {
        const auto add = [&](bool right, const std::vector<float>& move) {
            lessons.Add(FaceRegression::Grid(kind, *guess.photo, guess.frame, right, guess.place),
                        move, guess.face->weight);
        };
        const QPointF left = guess.Left() + QPointF(0.5, 0);
        const QPointF right = guess.Right() - QPointF(0.5, 0);
        if (kind == FaceRegression::Pair) {
            add(false, {f(left.x()), f(left.y()), f(right.x()), f(right.y())});
        } else if (FaceRegression::MovesEachEye(kind)) {
            add(false, {f(left.x()), f(left.y())});
            add(true, {f(-right.x()), f(right.y())});
        } else {
            add(false, {f(guess.PlaceOff(kind))});
        }
    }
    return lessons;
}

/// As whole numbers of a common scale; what is read back is what the next step starts from.
QByteArray Written(const FaceRegression::Step& step) {
    constexpr double Largest = 9999;
    double most = 1e-9;
    for (const cv::Mat1f& part : {step.offsets, step.weights}) {
        most = std::max(most, cv::norm(part, cv::NORM_INF));
    }
    const double scale = most / Largest;
    QByteArray text = FaceRegression::NameOf(step.kind) + QByteArray(" ") +
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

void Report(const char* name, size_t good, size_t all) {
    std::printf("%s: %.1f %% of %zu guesses good\n", name,
                100.0 * static_cast<double>(good) / static_cast<double>(all), all);
}

/// Moves each guess by a step that was learned, from the grids that it was learned from.
void Move(std::vector<Guess>& guesses, const FaceRegression::Step& step, const cv::Mat1f& grids) {
    constexpr double GoodPupil = 0.06;
    constexpr double GoodEnd = 0.2;
    const cv::Mat1f moves = grids * step.weights;
    const int rows = FaceRegression::MovesEachEye(step.kind) ? 2 : 1;
    size_t good = 0;
    for (size_t i = 0; i < guesses.size(); ++i) {
        Guess& guess = guesses[i];
        const int row = static_cast<int>(i) * rows;
        const cv::Mat1f first = moves.row(row) + step.offsets;
        const cv::Mat1f last = moves.row(row + rows - 1) + step.offsets;
        if (FaceRegression::MovesEyes(step.kind)) {
            guess.frame = FaceRegression::Moved(guess.frame, step.kind, first, last);
            const QPointF left = guess.Left() + QPointF(0.5, 0);
            const QPointF right = guess.Right() - QPointF(0.5, 0);
            good += std::max(std::hypot(left.x(), left.y()), std::hypot(right.x(), right.y())) <
                    GoodPupil;
        } else {
            guess.place += first(0);
            good += std::abs(guess.PlaceOff(step.kind)) < GoodEnd;
        }
    }
    Report(FaceRegression::NameOf(step.kind), good, guesses.size());
}

/// Learns steps of `kinds`, one after the other, and returns their table. Faces that were learned
/// from fit better than new ones will: between the steps the guesses are made worse again, pupils
/// by a deviation of `worseEyes` and places by `worsePlaces`.
QByteArray Learn(std::vector<Guess> guesses, const std::vector<FaceRegression::Kind>& kinds,
                 double worseEyes, double worsePlaces, Chance& chance) {
    QByteArray text;
    for (const FaceRegression::Kind kind : kinds) {
        const Lessons lessons = LessonsOf(guesses, kind);
        Lessons copied{lessons.grids.clone(), lessons.moves.clone(), lessons.weights};
        const FaceRegression::Step step = Learned(std::move(copied), kind);
        text += Written(step);
        Move(guesses, step, lessons.grids);
        for (Guess& guess : guesses) {
            guess.frame =
                worseEyes > 0 ? Disturbed(guess.frame, worseEyes, 0, chance) : guess.frame;
            guess.place += chance.Normal(worsePlaces);
        }
    }
    return text;
}

/// Those whose chin or crown is marked.
std::vector<MarkedFace> Showing(const std::vector<MarkedFace>& faces, QPointF MarkedFace::*end) {
    std::vector<MarkedFace> showing;
    std::ranges::copy_if(faces, std::back_inserter(showing),
                         [&](const MarkedFace& face) { return !std::isnan((face.*end).y()); });
    return showing;
}

void Train(const QString& marks, const QString& table) {
    using Regression = FaceRegression;
    Chance chance;
    const std::vector<MarkedFace> faces = ReadMarks(marks);
    QByteArray text = Learn(GuessesOf(faces, Eyes, chance),
                            {Regression::Pair, Regression::Pair, Regression::Eye, Regression::Eye,
                             Regression::EyeByBoth},
                            0.02, 0, chance);
    text += Learn(GuessesOf(Showing(faces, &MarkedFace::chin), Ends, chance),
                  {Regression::Chin, Regression::NearChin}, 0, 0.1, chance);
    text += Learn(GuessesOf(Showing(faces, &MarkedFace::crown), Ends, chance),
                  {Regression::Crown, Regression::NearCrown}, 0, 0.15, chance);
    platform::WriteFileAtomically(table, text);
}

}  // namespace

int main(int argc, char** argv) {
    return tools::ToolMain(argc, argv, u"Aufruf: kadrona-train-faces MARKEN TABELLE"_s, Train);
}
