#pragma once

#include <QByteArrayView>
#include <set>
#include <vector>

#include "imaging/ByteReader.h"
#include "imaging/MetafileCanvas.h"
#include "imaging/MetafilePicture.h"
#include "imaging/MetafileShapes.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a WMF, placeable or not.
bool IsWmf(QByteArrayView start);

/// Reads the header of a WMF, or the first window that its records set where it has no placeable
/// header. Its device is one of 96 dots per inch. Throws MetafileFault or OutOfBytes.
MetafilePicture ReadWmfHeader(QByteArrayView file);

/// Draws the records of a WMF (Microsoft's [MS-WMF]). Records that it does not know are skipped.
class WmfPlayer {
 public:
    /// Owns neither.
    WmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, or OutOfBytes where a record holds less than it says.
    void Play();

 private:
    using Object = MetafileCanvas::Object;

    void PlayRecord(quint16 function, ByteReader& parameters);
    // Each of these returns false for a record of another group.
    bool PlayState(quint16 function, ByteReader& parameters);
    bool PlayObject(quint16 function, ByteReader& parameters);
    bool PlayFigure(quint16 function, ByteReader& parameters);
    bool PlayPoints(quint16 function, ByteReader& parameters);
    bool PlayFill(quint16 function, ByteReader& parameters);
    bool PlayBitmap(quint16 function, ByteReader& parameters);

    void AddObject(Object object);
    void DeleteObject(quint16 index);
    void CreateFont(ByteReader& parameters);
    void CreatePatternBrush(ByteReader& parameters);
    void DrawArc(ByteReader& parameters, ArcKind kind);
    void DrawText(ByteReader& parameters);
    void DrawExtendedText(ByteReader& parameters);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    /// A new object takes the lowest free place.
    std::vector<Object> objects_;
    std::set<quint16> freePlaces_;
};

}  // namespace kadrona::imaging
