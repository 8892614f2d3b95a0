#pragma once

namespace kadrona::platform {

/// Makes up for what whoever starts the program may have left out; called before anything else.
///
/// Standard streams that are closed lead to nowhere: the next files opened would get their numbers,
/// and what is printed would be written into a photo. Folders of the user that are not absolute are
/// none, as the desktop's rules say: else settings would be read from wherever the program stands.
void MakeUpForSurroundings();

}  // namespace kadrona::platform
