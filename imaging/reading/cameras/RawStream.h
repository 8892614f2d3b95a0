#pragma once

#include <libraw/libraw.h>

#include <QByteArray>

namespace kadrona::imaging {

/// The bytes of a raw file for LibRaw, which may ask for them only so many times until
/// StopCounting(): directories and boxes that point back at themselves keep it looking for ever,
/// and it tells nobody of its progress there. What asks for more is told that the file ends.
class RawStream : public LibRaw_buffer_datastream {
 public:
    /// The bytes outlive the stream.
    explicit RawStream(const QByteArray& file)
        : LibRaw_buffer_datastream(const_cast<char*>(file.constData()),
                                   static_cast<size_t>(file.size())),
          left_(FewestQuestions + file.size()) {}

    /// For what takes time in proportion to the pixels.
    void StopCounting() { counts_ = false; }

    int read(void* target, size_t size, size_t count) override;
    int seek(INT64 offset, int whence) override;
    char* gets(char* text, int size) override;
    int scanf_one(const char* format, void* value) override;
    int get_char() override;

 private:
    /// Far more than a camera's file needs, and a fraction of a second.
    static constexpr qint64 FewestQuestions = 5'000'000;

    void Count() {
        if (counts_ && --left_ < 0) {
            throw LIBRAW_EXCEPTION_IO_EOF;
        }
    }

    qint64 left_;
    bool counts_ = true;
};

}  // namespace kadrona::imaging
