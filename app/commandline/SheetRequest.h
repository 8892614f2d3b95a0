#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/sheet/PaperSheet.h"
#include "core/templates/TemplatePlace.h"
#include "imaging/writing/SizedJpeg.h"
#include "platform/Error.h"

class QCommandLineParser;

namespace kadrona::app {

/// The command line says something that makes no sense.
class UsageError : public platform::Error {
    using Error::Error;
};

/// What "kadrona sheet" is asked to do.
struct SheetRequest {
    /// Files and folders, as given.
    QStringList photos;
    QString templateName;
    /// A file, or a folder for several photos.
    QString output;
    /// Nothing: the profile's.
    std::optional<int> layoutIndex;
    /// Nothing: the place saved for photos of that size.
    std::optional<core::TemplatePlace> place;
    /// The place on each photo's face.
    bool automatic = false;
    /// Empty: "Standard Profile", which need not exist.
    QString profile;
    /// The paper that is asked for, with what of it was named; without one the bare grid.
    std::optional<core::PaperChoice> paper;
    /// The file of an order for a collected sheet; empty where photos are named instead.
    QString order;
};

/// What "kadrona photo" is asked to do.
struct PhotoRequest {
    /// Files and folders, as given.
    QStringList photos;
    QString templateName;
    /// A file, or a folder for several photos.
    QString output;
    /// Nothing: the place on the face where `automatic`, else the one saved for photos of that
    /// size.
    std::optional<core::TemplatePlace> place;
    bool automatic = false;
    /// Nothing: what the template says.
    std::optional<QSize> pixels;
    std::optional<imaging::ByteRange> bytes;
};

/// What "kadrona check" is asked to do.
struct CheckRequest {
    /// Files and folders, as given.
    QStringList photos;
    QString templateName;
    /// Nothing: the place on the face where `automatic`, else the one saved for photos of that
    /// size.
    std::optional<core::TemplatePlace> place;
    bool automatic = false;
    bool json = false;
    /// Something missed counts for the exit code.
    bool strict = false;
};

/// Lets the parser read the arguments of a command. Throws UsageError for what it does not know.
void ParseOptions(QCommandLineParser& parser, const QStringList& arguments);

/// A photo as it was named: a path, or an address as file managers give it ("file:///...").
QString LocalPath(const QString& argument);

/// Reads the arguments that follow "photo". Throws UsageError.
PhotoRequest ParsePhotoRequest(const QStringList& arguments);

/// Reads the arguments that follow "check". Throws UsageError.
CheckRequest ParseCheckRequest(const QStringList& arguments);

/// Reads the arguments that follow "sheet". Throws UsageError.
SheetRequest ParseSheetRequest(const QStringList& arguments);

}  // namespace kadrona::app
