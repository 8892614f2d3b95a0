#pragma once

#include <QByteArrayView>
#include <set>
#include <vector>

#include "imaging/metafile/MetafileCanvas.h"
#include "imaging/metafile/MetafilePicture.h"
#include "imaging/metafile/MetafileShapes.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is a WMF, placeable or not.
bool IsWmf(QByteArrayView start);

/// Reads the header of a WMF, or the first window that its records set where it has no placeable
/// header. Its device is one of 96 dots per inch. Throws MetafileFault or platform::OutOfBytes.
MetafilePicture ReadWmfHeader(QByteArrayView file);

/// Draws the records of a WMF (Microsoft's [MS-WMF]). Records that it does not know are skipped.
class WmfPlayer {
 public:
    /// Owns neither.
    WmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, or platform::OutOfBytes where a record holds less than it says.
    void Play();

 private:
    using Object = MetafileCanvas::Object;

    void PlayRecord(quint16 function, platform::ByteReader& parameters);
    // Each of these returns false for a record of another group.
    bool PlayState(quint16 function, platform::ByteReader& parameters);
    bool PlayObject(quint16 function, platform::ByteReader& parameters);
    bool PlayFigure(quint16 function, platform::ByteReader& parameters);
    bool PlayPoints(quint16 function, platform::ByteReader& parameters);
    bool PlayFill(quint16 function, platform::ByteReader& parameters);
    bool PlayBitmap(quint16 function, platform::ByteReader& parameters);

    void AddObject(Object object);
    void DeleteObject(quint16 index);
    void CreateFont(platform::ByteReader& parameters);
    void CreatePatternBrush(platform::ByteReader& parameters);
    void DrawArc(platform::ByteReader& parameters, ArcKind kind);
    void DrawText(platform::ByteReader& parameters);
    void DrawExtendedText(platform::ByteReader& parameters);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    /// A new object takes the lowest free place.
    std::vector<Object> objects_;
    std::set<quint16> freePlaces_;
};

}  // namespace kadrona::imaging
