#pragma once

#include <QCommandLineParser>
#include <optional>

#include "core/sheet/PaperSheet.h"

namespace kadrona::app {

/// The options of a sheet on paper.
QList<QCommandLineOption> PaperOptions();

/// What they ask for; nothing without --paper, where the others make no sense. Throws UsageError.
std::optional<core::PaperChoice> ParsePaper(const QCommandLineParser& parser);

}  // namespace kadrona::app
