#include "imaging/pixels/AxisTaps.h"

#include <algorithm>
#include <cmath>

#include "imaging/pixels/CubicKernel.h"

namespace kadrona::imaging {

namespace {

/// A filter over source pixels of which each target pixel covers `step`.
class Kernel {
 public:
    Kernel(Filter filter, double step)
        : filter_(filter), step_(step), stretch_(std::max(step, 1.0)) {}

    /// So many neighbouring source pixels can have a weight.
    int Taps() const {
        switch (filter_) {
            case Filter::Nearest:
                return 1;
            case Filter::Linear:
                return 2;
            case Filter::Area:
                return static_cast<int>(std::ceil(step_)) + 1;
            case Filter::Cubic:
                break;
        }
        return static_cast<int>(std::ceil(4 * stretch_)) + 1;
    }

    /// The first of them for a target pixel whose middle lies at `centre`.
    int First(double centre) const {
        const double begin = filter_ == Filter::Nearest  ? centre
                             : filter_ == Filter::Linear ? centre - 0.5
                             : filter_ == Filter::Area   ? centre - step_ / 2
                                                         : centre - 2 * stretch_;
        return static_cast<int>(std::floor(begin));
    }

    /// Weights need not sum up to 1.
    double WeightOf(int source, double centre) const {
        const double distance = source + 0.5 - centre;
        switch (filter_) {
            case Filter::Nearest:
                return 1;
            case Filter::Linear:
                return std::max(0.0, 1 - std::abs(distance));
            case Filter::Area:
                return std::clamp((step_ + 1) / 2 - std::abs(distance), 0.0, std::min(step_, 1.0));
            case Filter::Cubic:
                break;
        }
        return CubicKernel(distance / stretch_);
    }

 private:
    Filter filter_;
    double step_;
    double stretch_;
};

}  // namespace

AxisTaps MakeAxisTaps(int sourceLength, double step, int begin, int end, Filter filter) {
    const Kernel kernel(filter, step);
    AxisTaps axis;
    axis.taps = std::min(kernel.Taps(), sourceLength);
    axis.first.reserve(static_cast<size_t>(end - begin));
    axis.weights.reserve(static_cast<size_t>(end - begin) * static_cast<size_t>(axis.taps));
    std::vector<double> weights(static_cast<size_t>(axis.taps));
    for (int i = begin; i < end; ++i) {
        const double centre = (i + 0.5) * step;
        int source = std::clamp(kernel.First(centre), 0, sourceLength - axis.taps);
        axis.first.push_back(source);
        double sum = 0;
        for (double& weight : weights) {
            weight = kernel.WeightOf(source++, centre);
            sum += weight;
        }
        for (const double weight : weights) {
            axis.weights.push_back(static_cast<float>(weight / sum));
        }
    }
    return axis;
}

}  // namespace kadrona::imaging
