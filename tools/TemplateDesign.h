#pragma once

#include <vector>

#include "core/check/TemplateTable.h"
#include "core/templates/TemplateFile.h"

namespace kadrona::tools {

/// The drawing of one document: the photo's frame and centre line, and what is published of it.
///
///     grey    frame, centre line, tick at the chin
///     red     largest head         blue     smallest head
///     green   eye band             violet   bands of crown and chin, limits of the face's axis
///
/// Lines are 2 to 4 units wide; what is only advice is thinner than what binds.
std::vector<core::TMask> DesignTemplate(const core::TemplateRow& row);

}  // namespace kadrona::tools
