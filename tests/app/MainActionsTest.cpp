#include <gtest/gtest.h>

#include <map>

#include "app/MainActions.h"
#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

using app::ActionCircumstances;
using app::ActionState;

constexpr ActionCircumstances NoPhoto{};
constexpr ActionCircumstances PhotoOpen{
    .imageLoaded = true, .templateLoaded = true, .layoutIndex = 0};
constexpr ActionCircumstances NoTemplate{.imageLoaded = true, .layoutIndex = 0};
constexpr ActionCircumstances SheetOfEight{
    .imageLoaded = true, .sheetCreated = true, .layoutIndex = 0};
constexpr ActionCircumstances SinglePhoto{
    .imageLoaded = true, .sheetCreated = true, .layoutIndex = 6};

/// Names of the actions that are enabled.
QStringList Enabled(const ActionCircumstances& circumstances) {
    const FakeSettings settings;
    QStringList names;
    for (const app::ActionDefinition& definition : app::ActionDefinitions()) {
        if (app::StateOf(definition, circumstances, settings).enabled) {
            names.append(QString::fromUtf16(definition.name));
        }
    }
    names.sort();
    return names;
}

QStringList With(QStringList names, const QStringList& more) {
    names += more;
    names.sort();
    return names;
}

TEST(Actions, AreEnabledByTheStateOfThePhoto) {
    const QStringList always{u"acAbout"_s,           u"acClose"_s,       u"acOpen"_s,
                             u"acOpenWithProfile"_s, u"acPrinSetup"_s,   u"acPrinterProfilDlg"_s,
                             u"acRotateLeft"_s,      u"acRotateRight"_s, u"acSearchArchiv"_s,
                             u"acShowCheck"_s,       u"acShowConfig"_s,  u"acZoomFit"_s,
                             u"acZoomFull"_s};
    const QStringList tools{u"acBeauty"_s,    u"acColorConfig"_s,  u"acGradation"_s,
                            u"acRotateDlg"_s, u"acSchwarzweiss"_s, u"acSetWhitePoint"_s,
                            u"acShowLayer"_s, u"acLevelHead"_s};
    EXPECT_EQ(Enabled(NoPhoto), With(always, {}));
    EXPECT_EQ(Enabled(NoTemplate), With(always, tools));
    EXPECT_EQ(Enabled(PhotoOpen), With(With(always, tools), {u"acAlignToFace"_s, u"acCrop"_s}));
    EXPECT_EQ(Enabled(SheetOfEight), With(always, {u"acPrintImage"_s, u"acSave"_s}));
    EXPECT_EQ(Enabled(SinglePhoto),
              With(always, {u"acPrintImage"_s, u"acSave"_s, u"acSaveImageFast"_s}));
    ActionCircumstances undoable = NoPhoto;
    undoable.canUndo = true;
    EXPECT_EQ(Enabled(undoable), With(always, {u"acUndo"_s}));
}

TEST(Actions, AreHiddenByTheSettingThatSwitchesThemOff) {
    const std::map<QString, QStringList> switches{
        {u"ShowGradation"_s, {u"acGradation"_s}},
        {u"ShowBlackWhite"_s, {u"acSchwarzweiss"_s}},
        {u"ShowRotate"_s, {u"acRotateDlg"_s}},
        {u"WhiteBalancePipette"_s, {u"acSetWhitePoint"_s}},
        {u"PrintAfterCrop"_s, {u"acPrintImage"_s, u"acSave"_s, u"acSaveImageFast"_s}}};
    for (const auto& [setting, actions] : switches) {
        FakeSettings settings;
        settings[setting] = true;
        QStringList hidden;
        for (const app::ActionDefinition& definition : app::ActionDefinitions()) {
            if (!app::StateOf(definition, SinglePhoto, settings).visible) {
                hidden.append(QString::fromUtf16(definition.name));
            }
        }
        EXPECT_EQ(hidden, actions) << setting.toStdString();
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
