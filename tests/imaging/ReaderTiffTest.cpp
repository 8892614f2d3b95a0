// TIFF files that ask their library for more than their picture needs.
#include "ReaderFixture.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

TEST(ReaderTiff, IsUnpackedOnlyAsPhotosArePacked) {
    for (const auto& [packing, isUsual] : {std::pair(1, true),
                                           {5, true},
                                           {7, true},
                                           {8, true},
                                           {32773, true},
                                           {32946, true},
                                           {2, false},
                                           {4, false},
                                           {6, false},
                                           {32809, false},
                                           {34676, false},
                                           {34887, false},
                                           {34925, false},
                                           {50000, false},
                                           {50001, false}}) {
        const QString failure =
            Failure(Tiff({Short(0x100, 10), Short(0x101, 10), Short(0x102, 8),
                          Short(0x103, quint16(packing)), Short(0x106, 1), Short(0x115, 1)},
                         QByteArray(100, 'x')));
        EXPECT_EQ(failure.contains(u"TIFF-Kompression %1)"_s.arg(packing)), !isUsual)
            << packing << failure.toStdString();
    }
}

TEST(ReaderTiff, JpegsInItHaveTheirPlacesSizeAndOneScan) {
    const auto tiff = [](bool progressive, quint16 rows) {
        JpegContent content;
        content.size = {40, 200};
        content.progressive = progressive;
        const QByteArray bits = LittleEndian(quint16{8}).repeated(3);
        return Tiff({Short(0x100, 40), Short(0x101, rows), TiffEntry{0x102, 3, bits},
                     Short(0x103, 7), Short(0x106, 6), Short(0x115, 3)},
                    Jpeg(content));
    };
    const QString refused = Complaint("Diese Art von TIFF-Datei wird nicht unterstützt.");
    EXPECT_EQ(Failure(tiff(false, 200)), QString());
    EXPECT_EQ(Failure(tiff(true, 200)), refused);
    EXPECT_EQ(Failure(tiff(false, 100)), refused);
}

}  // namespace kadrona::imaging::test
