#pragma once

#include <cstdio>

#include "core/base/UserInterface.h"

namespace kadrona::bench {

/// Nobody to ask: messages go to the terminal, every question is cancelled.
class SilentInterface : public core::UserInterface {
 public:
    void ShowMessage(const QString& text) override { std::printf("%s\n", qPrintable(text)); }
    std::optional<QStringList> EditTags(const imaging::Pixels& /*photo*/,
                                        const QStringList& /*lines*/) override {
        return {};
    }
    std::optional<QString> AskForSaveFile(const core::SaveDialog& /*dialog*/) override {
        return {};
    }
    std::optional<double> AskForRotation(const imaging::Pixels& /*preview*/) override { return {}; }
};

}  // namespace kadrona::bench
