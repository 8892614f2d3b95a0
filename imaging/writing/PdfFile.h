#pragma once

#include <QByteArray>
#include <QIODevice>
#include <vector>

#include "imaging/writing/RowSource.h"

namespace kadrona::imaging {

/// Writes a PDF file (ISO 32000-1) object by object, in the order of their numbers from 1. Throws
/// platform::Error with the bare reason.
class PdfFile {
 public:
    /// `device` is open for writing, empty and outlives the object.
    explicit PdfFile(QIODevice& device);

    /// "N 0 R"
    static QByteArray Reference(int object);

    void AppendObject(const QByteArray& content);
    /// `entries` of the stream's dictionary, without its length.
    void AppendStream(const QByteArray& entries, const QByteArray& bytes);
    /// Two objects: a lossless image and the length of its stream. `profile` is the object of its
    /// colour profile.
    void AppendImage(const RowSource& rows, int profile);
    /// The colour profile of sRGB.
    void AppendSrgbProfile();

    /// The table of objects and the trailer; `root` and `info` are the objects of the catalogue and
    /// of the information dictionary.
    void Finish(int root, int info);

 private:
    void Append(const QByteArray& text);
    void Begin();
    void End();

    QIODevice& device_;
    /// Where the objects begin.
    std::vector<qint64> offsets_;
};

}  // namespace kadrona::imaging
