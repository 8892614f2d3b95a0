#pragma once

#include <QString>

#include "imaging/face/Classifier.h"

/// What the part "kadrona-faces" offers: the classifier of a file, for the caller to delete. Null
/// where the file is missing or damaged. Throws what OpenCV throws where memory is short.
extern "C" kadrona::imaging::Classifier* kadrona_load_classifier(const QString& path);
