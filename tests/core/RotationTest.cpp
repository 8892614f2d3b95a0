#include <gtest/gtest.h>

#include "core/Data.h"
#include "core/sheet/Rotation.h"
#include "imaging/document/LayeredImage.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::testing {

TEST(RotationPreview, HasALongSideOf300AndATruncatedShortOne) {
    const struct {
        QSize photo;
        QSize preview;
    } rows[] = {{{1000, 1500}, {200, 300}}, {{1500, 1000}, {300, 200}}, {{999, 1000}, {299, 300}},
                {{700, 700}, {300, 300}},   {{1, 1}, {300, 300}},       {{1, 100000}, {1, 300}},
                {{100000, 1}, {300, 1}}};
    for (const auto& row : rows) {
        EXPECT_EQ(core::RotationPreviewSize(row.photo), row.preview)
            << row.photo.width() << " x " << row.photo.height();
    }
}

TEST(RotateImage, TurnsTheWholePhotoByTheAnswerAndNothingWithoutOne) {
    const Installation installation;
    FakeInterface ui;
    core::TData data(ui, installation.Folders());
    imaging::LayeredImage image;
    data.RotateImage(image);
    EXPECT_TRUE(ui.rotationPreview.isEmpty()) << "there is no photo yet";

    image.Open(imaging::Pixels(Picture({"rgb", "wky"})), {});
    data.RotateImage(image);
    EXPECT_EQ(ui.rotationPreview, QSize(300, 200));
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"rgb", "wky"})));
    ui.rotation = 0.0;
    data.RotateImage(image);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"rgb", "wky"})));
    ui.rotation = 90.0;
    data.RotateImage(image);
    EXPECT_TRUE(SamePixels(image.Photo(), Picture({"by", "gk", "rw"})));
}

}  // namespace kadrona::testing
