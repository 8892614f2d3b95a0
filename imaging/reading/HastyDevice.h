#pragma once

#include <QDeadlineTimer>
#include <QIODevice>
#include <algorithm>

namespace kadrona::imaging {

/// A file that ends when the time is up, wherever its reader is: a library in the middle of a
/// picture cannot be called off otherwise.
class HastyDevice : public QIODevice {
 public:
    /// `file` is open, random access, and outlives this.
    HastyDevice(QIODevice& file, QDeadlineTimer end) : file_(file), end_(end) {
        open(ReadOnly | Unbuffered);
    }

    /// Whether somebody wanted to read on when the time was up.
    bool HasEnded() const { return hasEnded_; }

    bool isSequential() const override { return false; }
    qint64 size() const override { return file_.size(); }
    bool seek(qint64 position) override {
        return QIODevice::seek(position) && file_.seek(position);
    }

 protected:
    qint64 readData(char* data, qint64 maximum) override {
        // A whole file at once could be as long as a disk likes, but who asks for it gets no less.
        constexpr qint64 MostAtOnce = 1 << 20;
        qint64 all = 0;
        for (qint64 read = 1; read > 0 && all < maximum; all += std::max<qint64>(read, 0)) {
            hasEnded_ = hasEnded_ || end_.hasExpired();
            if (hasEnded_) {
                return -1;
            }
            read = file_.read(data + all, std::min(maximum - all, MostAtOnce));
        }
        return all;
    }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }

 private:
    QIODevice& file_;
    QDeadlineTimer end_;
    bool hasEnded_ = false;
};

}  // namespace kadrona::imaging
