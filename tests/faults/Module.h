#pragma once

#include <QString>
#include <QTextStream>
#include <functional>
#include <utility>
#include <vector>

#include "core/Data.h"
#include "imaging/document/LayeredImage.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::testing {

inline const QString Tags = QStringLiteral("Jürgen Groß\r\nKöln\r\n");

/// The data module of the installation in a folder, and what it works with.
struct Module {
    explicit Module(QString where)
        : folder(std::move(where)),
          data(ui, {folder + QStringLiteral("/program"), folder + QStringLiteral("/common")},
               &printer),
          archive(folder + QStringLiteral("/archive")) {
        core::NameSources sources;
        sources.now = [] { return QDateTime(QDate(2026, 3, 7), QTime(14, 30)); };
        data.SetNameSources(sources);
        image.Open(imaging::Pixels(Filled({120, 160}, 0xffa0a0a0)), {300});
    }

    /// Runs a command of the command line; each line of what it could not do is a message. Returns
    /// the rest.
    QString RunCommand(const std::function<void(QTextStream& progress, QTextStream& errors)>& run) {
        QString said;
        QString failures;
        QTextStream progress(&said);
        QTextStream errors(&failures);
        run(progress, errors);
        ui.messages += failures.split(u'\n', Qt::SkipEmptyParts);
        return said;
    }

    QString folder;
    FakeInterface ui;
    FakePrinter printer;
    core::TData data;
    QString archive;
    imaging::LayeredImage image;
};

/// An operation of a finished installation.
using Step = std::function<void(Module&)>;
using NamedSteps = std::vector<std::pair<const char*, Step>>;

/// What the archive's other operations start from: a photo without a record, one that waits for the
/// server.
void FillArchive(Module& module);

NamedSteps ArchiveSteps();

}  // namespace kadrona::testing
