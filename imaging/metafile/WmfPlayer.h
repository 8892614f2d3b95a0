#pragma once

#include <QByteArrayView>
#include <optional>
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

/// Draws the records of a WMF (Microsoft's [MS-WMF]). What is drawn and why by code of
/// our own stands at EmfPlayer.
class WmfPlayer {
 public:
    /// Owns neither.
    WmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, UnsupportedRecord, or platform::OutOfBytes where a record holds less
    /// than it says.
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

    /// None: what takes a place and is never drawn with.
    void AddObject(std::optional<Object> object);
    void DeleteObject(quint16 index);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    /// A new object takes the lowest free place.
    std::vector<std::optional<Object>> objects_;
    std::set<quint16> freePlaces_;
};

}  // namespace kadrona::imaging
