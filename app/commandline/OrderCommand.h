#pragma once

#include <QTextStream>

#include "app/commandline/SheetRequest.h"
#include "core/Data.h"

namespace kadrona::app {

/// Makes the one collected sheet that an order file asks for, without a window. A sheet that lacks
/// a customer's picture would be cut and handed out: where a line makes no sense, a photo cannot be
/// done or not all of them fit, each is named with its number in `errors` and nothing is written.
int MakeOrder(const SheetRequest& request, core::TData& data, QTextStream& progress,
              QTextStream& errors);

}  // namespace kadrona::app
