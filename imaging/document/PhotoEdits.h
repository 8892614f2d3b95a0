#pragma once

namespace kadrona::imaging {

/// What an operation does to a photo beside cutting, scaling and turning it.
enum class PhotoEdit {
    Geometry,  ///< none of the others
    Tone,      ///< brightness: curves
    Colours,   ///< white point, hue, saturation, grey
    Retouch,   ///< pixels painted over
};

/// What was done to a photo since it was opened.
struct PhotoEdits {
    bool tone = false;
    bool colours = false;
    bool retouched = false;
    /// Another number than before wherever what the photo shows lies elsewhere in it, or the photo
    /// is another one.
    int geometry = 0;
    /// By another angle than quarter turns, which uncovers white corners.
    bool turnedFreely = false;

    bool Any() const { return tone || colours || retouched; }

    void Add(PhotoEdit edit) {
        tone |= edit == PhotoEdit::Tone;
        colours |= edit == PhotoEdit::Colours;
        retouched |= edit == PhotoEdit::Retouch;
        geometry += int{edit == PhotoEdit::Geometry};
    }

    bool operator==(const PhotoEdits&) const = default;
};

}  // namespace kadrona::imaging
