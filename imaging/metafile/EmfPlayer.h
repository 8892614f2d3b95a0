#pragma once

#include <QByteArrayView>
#include <unordered_map>

#include "imaging/metafile/MetafileCanvas.h"
#include "imaging/metafile/MetafilePicture.h"
#include "imaging/metafile/MetafileShapes.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is an EMF.
bool IsEmf(QByteArrayView start);

/// Reads the header of an EMF. Throws MetafileFault or platform::OutOfBytes.
MetafilePicture ReadEmfHeader(QByteArrayView file);

/// Draws the records of an EMF (Microsoft's [MS-EMF]). Bitmaps and the basic shapes
/// are drawn, no texts, paths, arcs, patterns or regions: photos have none of these.
///
/// libwmf and libemf were weighed: the one wants fonts of its own and knows no EMF, the other only
/// writes. Qt has no player.
class EmfPlayer {
 public:
    /// Owns neither.
    EmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, UnsupportedRecord, or platform::OutOfBytes where a record holds less
    /// than it says.
    void Play();

 private:
    /// One record; offsets in it count from its start.
    struct Record {
        quint32 type;
        QByteArrayView bytes;
        /// Stands behind type and size.
        platform::ByteReader reader;
    };
    using Object = MetafileCanvas::Object;

    void PlayRecord(Record& record);
    // Each of these returns false for a record of another group.
    bool PlayMapping(Record& record);
    bool PlayState(Record& record);
    bool PlayObject(Record& record);
    bool PlayFigure(Record& record);
    bool PlayPoints(Record& record);
    bool PlayBitmap(Record& record);

    void AddObject(quint32 handle, Object object);
    void SelectObject(quint32 handle);
    void ModifyWorld(platform::ByteReader& reader);
    /// False for a region that is combined with the clipping so far.
    bool SelectClipRegion(platform::ByteReader& reader);
    template <typename Coordinate>
    void DrawPoints(platform::ByteReader& reader, quint32 wideType);
    template <typename Coordinate>
    void DrawManyPolygons(platform::ByteReader& reader, bool closed);
    void BlitBitmap(Record& record);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    std::unordered_map<quint32, Object> objects_;
};

}  // namespace kadrona::imaging
