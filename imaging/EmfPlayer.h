#pragma once

#include <QByteArrayView>
#include <unordered_map>

#include "imaging/ByteReader.h"
#include "imaging/MetafileCanvas.h"
#include "imaging/MetafilePicture.h"
#include "imaging/MetafileShapes.h"

namespace kadrona::imaging {

/// True where a file that starts with these bytes is an EMF.
bool IsEmf(QByteArrayView start);

/// Reads the header of an EMF. Throws MetafileFault or OutOfBytes.
MetafilePicture ReadEmfHeader(QByteArrayView file);

/// Draws the records of an EMF (Microsoft's [MS-EMF]). Records that it does not know are skipped.
class EmfPlayer {
 public:
    /// Owns neither.
    EmfPlayer(QByteArrayView file, MetafileCanvas& canvas) : file_(file), canvas_(canvas) {}

    /// Throws MetafileFault, or OutOfBytes where a record holds less than it says.
    void Play();

 private:
    /// One record; offsets in it count from its start.
    struct Record {
        quint32 type;
        QByteArrayView bytes;
        /// Stands behind type and size.
        ByteReader reader;
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
    void CreateFont(ByteReader& reader);
    void CreatePatternBrush(Record& record);
    void ModifyWorld(ByteReader& reader);
    void SelectClipRegion(ByteReader& reader);
    template <typename Coordinate>
    void DrawPoints(ByteReader& reader, quint32 wideType);
    template <typename Coordinate>
    void DrawManyPolygons(ByteReader& reader, bool closed);
    void DrawArc(ByteReader& reader, ArcKind kind);
    void BlitBitmap(Record& record);
    void DrawSmallText(ByteReader& reader);
    void DrawExtendedText(Record& record);

    QByteArrayView file_;
    MetafileCanvas& canvas_;
    std::unordered_map<quint32, Object> objects_;
};

}  // namespace kadrona::imaging
