#include <gtest/gtest.h>

#include "app/base/MainActions.h"
#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using app::ActionCircumstances;
using app::ActionState;

constexpr ActionCircumstances SinglePhoto{
    .imageLoaded = true, .sheetCreated = true, .layoutIndex = 6};

/// The names of the actions whose state has something, in the alphabet's order.
QString Actions(const ActionCircumstances& circumstances, const core::Settings& settings,
                bool ActionState::*something, bool has = true) {
    QStringList names;
    for (const app::ActionDefinition& definition : app::ActionDefinitions()) {
        if (app::StateOf(definition, circumstances, settings).*something == has) {
            names.append(QString::fromUtf16(definition.name));
        }
    }
    names.sort();
    return names.join(u' ');
}

TEST(Actions, AreEnabledByTheStateOfThePhoto) {
    const QString always =
        u"acAbout acClose acManual acOpen acOpenWithProfile acPaste acPrinSetup acPrinterProfilDlg "
        u"acRotateLeft "
        "acRotateRight acSearchArchiv acShowCheck acShowConfig acShowSheet acZoomFit acZoomFull "_s;
    const QString tools =
        u"acBeauty acColorConfig acGradation acRotateDlg acSchwarzweiss "
        "acSetWhitePoint acShowLayer "_s;
    struct Row {
        ActionCircumstances circumstances;
        QString enabled;
    };
    for (const auto& [circumstances, enabled] :
         {Row{{}, always}, Row{{.imageLoaded = true}, always + tools},
          Row{{.imageLoaded = true, .templateLoaded = true, .pictureShown = true},
              always + tools +
                  u"acAddToSheet acAlignToFace acCrop acLevelByLine acLevelHead acUploadFile "_s},
          Row{{.imageLoaded = true, .sheetCreated = true, .templateLoaded = true},
              always + u"acPrintImage acSave "_s},
          Row{{.imageLoaded = true, .sheetCreated = true, .cutKnown = true, .archivable = true},
              always + u"acArchivePhoto acPrintImage acSave acUploadFile "_s},
          Row{SinglePhoto, always + u"acPrintImage acSave acSaveImageFast "_s},
          Row{{.canUndo = true}, always + u"acUndo "_s}}) {
        QStringList sorted = enabled.split(u' ', Qt::SkipEmptyParts);
        sorted.sort();
        EXPECT_EQ(Actions(circumstances, FakeSettings(), &ActionState::enabled), sorted.join(u' '));
    }
}

TEST(Actions, AreHiddenByTheSettingThatSwitchesThemOff) {
    for (const auto& [setting, actions] :
         {std::pair(u"ShowGradation"_s, u"acGradation"_s),
          std::pair(u"ShowBlackWhite"_s, u"acSchwarzweiss"_s),
          std::pair(u"ShowRotate"_s, u"acRotateDlg"_s),
          std::pair(u"WhiteBalancePipette"_s, u"acSetWhitePoint"_s),
          std::pair(u"PrintAfterCrop"_s, u"acPrintImage acSave acSaveImageFast"_s)}) {
        FakeSettings settings;
        settings[setting] = true;
        EXPECT_EQ(Actions(SinglePhoto, settings, &ActionState::visible, false), actions)
            << setting.toStdString();
    }
}

TEST(Actions, CheckingOneOfTheExclusiveGroupUnchecksTheOthers) {
    app::MainActions actions;
    actions.SetChecked(app::Action::ShowLayer, true);
    actions.SetChecked(app::Action::Beauty, true);
    EXPECT_FALSE(actions.IsChecked(app::Action::ShowLayer));
    actions.SetChecked(app::Action::SetWhitePoint, false);
    EXPECT_TRUE(actions.IsChecked(app::Action::Beauty));
}

}  // namespace kadrona::testing
