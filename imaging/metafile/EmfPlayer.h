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

/// Draws the records of an EMF (Microsoft's [MS-EMF]). Records that it does not know are skipped.
class EmfPlayer {
 public:
    /// Owns neither.
    EmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, or platform::OutOfBytes where a record holds less than it says.
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
    bool PlayAttribute(Record& record);
    bool PlayObject(Record& record);
    bool PlayPath(Record& record);
    bool PlayClip(Record& record);
    bool PlayFigure(Record& record);
    bool PlayPoints(Record& record);
    bool PlayBitmap(Record& record);
    bool PlayText(Record& record);

    void SelectObject(quint32 handle);
    void CreateFont(platform::ByteReader& reader);
    void CreatePatternBrush(Record& record);
    void ModifyWorld(platform::ByteReader& reader);
    void SelectClipRegion(platform::ByteReader& reader);
    template <typename Coordinate>
    void DrawPoints(platform::ByteReader& reader, quint32 wideType);
    template <typename Coordinate>
    void DrawManyPolygons(platform::ByteReader& reader, bool closed);
    void DrawArc(platform::ByteReader& reader, ArcKind kind);
    void BlitBitmap(Record& record);
    void DrawSmallText(platform::ByteReader& reader);
    void DrawExtendedText(Record& record);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    std::unordered_map<quint32, Object> objects_;
};

}  // namespace kadrona::imaging
