#pragma once

#include <QStringList>
#include <QTextStream>
#include <functional>
#include <optional>

#include "app/commandline/SheetRequest.h"
#include "core/Data.h"
#include "core/check/FacePlacement.h"
#include "core/settings/StoredSettings.h"
#include "imaging/document/LayeredImage.h"

/// What the commands have in common.
namespace kadrona::app {

/// Exit codes of the command line. SomethingFound is that of a check: a strict one of photos, or
/// one of the archive.
enum ExitCode { Done = 0, SomePhotoFailed = 1, WrongUsage = 2, SomethingFound = 3 };

/// Runs a command; what it throws becomes a line and an exit code. A signal that ends programs does
/// so once the command has come to a place where that leaves nothing half done.
int RunCommand(QTextStream& errors, const std::function<int()>& command);

/// Gives a command this machine's data, without a window.
int WithData(QTextStream& errors, const std::function<int(core::TData&)>& command);

/// Loads the template of a name of the catalogue. Throws UsageError where there is none.
void LoadTemplate(core::TData& data, const QString& name);

/// The settings of a photo profile; of the standard one where `profile` is empty. Throws
/// UsageError.
core::StoredSettings ProfileSettings(const core::TData& data, const QString& profile);

/// Puts the drawn template to `place`, or without one where it lay on the last photo of this size.
/// Throws platform::Error where none is remembered or where it leaves the photo.
void PlaceTemplateAt(core::TData& data, imaging::LayeredImage& image,
                     const std::optional<core::TemplatePlace>& place);

/// Puts the drawn template to the photo's face; returns core::PlacementRemark. Throws
/// platform::Error where there is none, and imaging::CascadesMissing.
QString PlaceTemplateOnFace(core::TData& data, imaging::LayeredImage& image);

}  // namespace kadrona::app
