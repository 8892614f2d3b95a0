#pragma once

#include <QTextStream>
#include <functional>

#include "app/commandline/SheetRequest.h"
#include "core/Data.h"
#include "imaging/face/Face.h"

namespace kadrona::app {

using FaceFinder = std::function<imaging::FaceSearch(const imaging::Pixels&)>;

/// Checks the requested photos without a window. The reports go to `output`, one line per photo
/// that could not be read or, where the template is placed by the face, has none to `errors`. A
/// program gets an object with the reason for one that could not be read.
/// Where `find` throws imaging::CascadesMissing that is said, and what needs no face is checked.
/// Throws UsageError when the request cannot be met for any photo.
int CheckPhotos(const CheckRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors, const FaceFinder& find);

/// The same with the classifiers of this machine.
int CheckPhotos(const CheckRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors);

/// Reads the arguments after "check" and checks with this machine's data.
int RunCheckCommand(const QStringList& arguments, QTextStream& output, QTextStream& errors);

}  // namespace kadrona::app
