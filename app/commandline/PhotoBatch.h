#pragma once

#include <sys/types.h>

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>
#include <set>
#include <utility>

#include "app/commandline/SheetRequest.h"
#include "core/Data.h"
#include "imaging/document/LayeredImage.h"

/// What the commands that make a file of each photo have in common.
namespace kadrona::app {

/// The photos named; for a folder its files by name that any entry of the open dialog's filter
/// shows. Throws UsageError where there are none.
QStringList RequestedPhotos(const QStringList& photos);

/// One file per photo: `output` itself, or JPEG files in that folder, which is made. Photos of one
/// name from several folders get a number behind it. Throws UsageError where several photos have no
/// folder, or the file has none of the extensions.
QStringList OutputFiles(const QString& output, const QStringList& photos,
                        const QStringList& extensions);

/// What tells files of this machine apart, whatever names, links and mounts lead to them: the
/// device and the number there.
using FileIdentities = std::set<std::pair<dev_t, ino_t>>;

/// Those of these files; what is not there has none.
FileIdentities IdentitiesOf(const QStringList& files);

/// Throws platform::Error where `output` is one of the photos, which it would overwrite. `photos`
/// are of IdentitiesOf.
void RequireNoPhoto(const QString& output, const FileIdentities& photos);

/// Writes a line about a photo that was done all the same; none where the remark is empty.
void Remark(const QString& photo, const QString& remark, QTextStream& errors);

/// Opens a photo as the window does, without its questions, and draws the loaded template over it.
/// Throws platform::Error.
void OpenWithTemplate(core::TData& data, const core::Settings& settings, const QString& photo,
                      imaging::LayeredImage& image);

/// The same, and puts the template to the place on the face, the one asked for, or the one
/// remembered. Warnings go to `errors`.
void OpenUnderTemplate(core::TData& data, const core::Settings& settings,
                       const std::optional<core::TemplatePlace>& place, bool automatic,
                       const QString& photo, imaging::LayeredImage& image, QTextStream& errors);

/// Makes a file of every photo; what `make` returns stands in its line of progress. One that fails,
/// or whose file would overwrite any of the photos, is named in `errors`, the others are still
/// done. Returns an ExitCode. Throws platform::Cancelled between two photos where a signal was
/// noted.
int MakeEach(const QStringList& photos, const QStringList& outputs, QTextStream& progress,
             QTextStream& errors,
             const std::function<QString(const QString& photo, const QString& output)>& make);

}  // namespace kadrona::app
