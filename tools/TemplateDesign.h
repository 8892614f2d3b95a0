#pragma once

#include <vector>

#include "core/templates/TemplateFile.h"
#include "tools/TemplateTable.h"

namespace kadrona::tools {

/// Where the chin line of a template lies, in tenths of a millimetre above the lower edge. Without
/// a published place the head of middle size stands a little above the middle of the photo, its
/// crown in the upper quarter, lifted where its eyes would else lie below their band, and never so
/// high that the largest head comes near the upper edge.
int ChinAboveLowerEdge(const TemplateRow& row);

/// The drawing of one document: the photo's frame and centre line, and what is published of it.
///
///     grey    frame, centre line, tick at the chin
///     red     largest head         blue     smallest head
///     green   eye band             violet   bands of crown and chin, limits of the face's axis
///
/// Lines are 2 to 4 units wide; what is only advice is thinner than what binds.
std::vector<core::TMask> DesignTemplate(const TemplateRow& row);

}  // namespace kadrona::tools
