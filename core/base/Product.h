#pragma once

#include <QByteArrayView>
#include <QStringView>
#include <QUrl>

namespace kadrona::core {

/// How the program and its maker name themselves.
inline constexpr QStringView ApplicationTitle = u"Biometrische Kadrona Prof";
inline constexpr QStringView WindowCaption = u"Kadrona 6.0 Prof";
inline constexpr QStringView MakerLine = u"© Veltmark";
/// Names the program in the files that it writes.
inline constexpr QByteArrayView SoftwareText = "KDR 6 Prof by www.veltmark.example";
inline constexpr QStringView MakerHomePage = u"https://www.veltmark.example/kadrona";

/// Whether that page can exist: names under ".example" belong to nobody (RFC 2606).
inline bool MakerHasHomePage() {
    return !QUrl(MakerHomePage.toString()).host().endsWith(u".example");
}

}  // namespace kadrona::core
