// Targets that cannot be written, in the real windows: what the user reads, and what stays.

#include <sys/stat.h>

#include "tests/app/SavingFixture.h"
#include "tests/support/HostileFolders.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

/// Keeps a target bad while it lives; null where this machine or this user cannot make it so.
using Obstacle = std::shared_ptr<void>;

template <typename Type>
Obstacle IfSucceeded(std::shared_ptr<Type> obstacle) {
    return obstacle->Succeeded() ? obstacle : nullptr;
}

void SetMode(const Installation& installation, const char* below, mode_t mode) {
    chmod(QFile::encodeName(installation.Path(below)).constData(), mode);
}

Obstacle Nothing(const Installation&) {
    return std::make_shared<int>();
}

Obstacle ClosedFolder(const Installation& installation) {
    SetMode(installation, "", 0755);
    SetMode(installation, "saved", 0555);
    auto rights = std::make_shared<WithoutPrivileges>();
    return {rights.get(), [rights, &installation](void*) mutable {
                rights.reset();
                SetMode(installation, "saved", 0755);
            }};
}

Obstacle ReadOnlyMedium(const Installation& installation) {
    const auto disk = std::make_shared<SmallDisk>(installation.Path("saved"), "100k");
    if (disk->Succeeded()) {
        installation.Write("saved/Bildname.jpg", "old");
        disk->MakeReadOnly();
    }
    return IfSucceeded(disk);
}

Obstacle FullDisk(const Installation& installation) {
    const auto disk = std::make_shared<SmallDisk>(installation.Path("saved"), "8k");
    installation.Write("saved/Bildname.jpg", "old");
    return IfSucceeded(disk);
}

Obstacle Stick(const Installation& installation) {
    const auto stick =
        std::make_shared<MemoryStick>(installation.Path("saved"), installation.Path("image"));
    installation.Write("saved/Bildname.jpg", "old");
    return IfSucceeded(stick);
}

Obstacle ReadOnlyFile(const Installation& installation) {
    SetMode(installation, "saved/Bildname.jpg", 0444);
    return Nothing(installation);
}

Obstacle ImmutableFile(const Installation& installation) {
    return IfSucceeded(std::make_shared<Immutable>(installation.Path("saved/Bildname.jpg")));
}

Obstacle FolderOfThatName(const Installation& installation) {
    QDir().mkpath(installation.Path("saved/Ordner.jpg"));
    return Nothing(installation);
}

}  // namespace

struct BadTarget {
    const char* name;
    const char16_t* reason;
    Obstacle (*makeBad)(const Installation& installation);
    /// Below the folder, without the extension.
    QString file = u"Bildname"_s;
};

void PrintTo(const BadTarget& target, std::ostream* stream) {
    *stream << target.name;
}

/// In the folder stands "Bildname.jpg", which has to stay.
class BadTargetStory : public SavingStory, public ::testing::WithParamInterface<BadTarget> {
 protected:
    BadTargetStory() {
        installation.Write("saved/Bildname.jpg", "old");
        MakeSinglePhoto([this] { Setting<QLineEdit>("FileNameEd").setText(GetParam().file); });
    }

    void ExpectReason(const QString& file) {
        driver.Answer({u"Die Datei „%1/%2“ konnte nicht ge"_s.arg(installation.Path("saved"), file),
                       QString::fromUtf16(GetParam().reason)});
    }

    void ExpectNothingChanged() const {
        EXPECT_EQ(SavedFiles(), QStringList(u"Bildname.jpg"_s));
        QFile old(installation.Path("saved/Bildname.jpg"));
        EXPECT_TRUE(old.open(QIODevice::ReadOnly));
        EXPECT_EQ(old.readAll(), "old"_ba);
    }
};

TEST_P(BadTargetStory, TellsPathAndReasonAndLeavesTheOldFile) {
    const Obstacle obstacle = GetParam().makeBad(installation);
    if (!obstacle) {
        GTEST_SKIP() << "cannot be done on this machine or by this user";
    }
    const QString file = GetParam().file + u".jpg"_s;
    ExpectReason(file);
    Trigger(u"acSaveImageFast"_s);
    ExpectNothingChanged();
    EXPECT_TRUE(IsEnabled(u"acSaveImageFast"_s));

    const QFileInfo target(installation.Path("saved/") + file);
    if (target.isDir()) {
        return;  // the dialog opens it
    }
    driver.Expect(u"SaveDialog"_s, [&](QWidget& shown) { Type(shown, file); });
    if (target.exists()) {
        driver.Press(u"MessageBox"_s, u"YesButton"_s);
    }
    ExpectReason(file);
    Trigger(u"acSave"_s);
    ExpectNothingChanged();
}

INSTANTIATE_TEST_SUITE_P(
    Targets, BadTargetStory,
    ::testing::Values(
        BadTarget{"folder_missing", u"Die Datei oder der Ordner ist nicht vorhanden", Nothing,
                  u"fehlt/Bildname"_s},
        BadTarget{"folder_is_a_file", u"Ein Teil des Pfades ist kein Ordner", Nothing,
                  u"Bildname.jpg/Bild"_s},
        BadTarget{"folder_not_writable", u"Der Zugriff wurde verweigert", ClosedFolder},
        BadTarget{"medium_read_only", u"Der Datenträger ist schreibgeschützt", ReadOnlyMedium},
        BadTarget{"disk_full", u"Auf dem Datenträger ist kein Platz mehr", FullDisk},
        BadTarget{"name_too_long", u"Der Name ist zu lang", Nothing, QString(252, u'n')},
        BadTarget{"path_too_long", u"Der Name ist zu lang", Nothing, u"./"_s.repeated(2100) + u'n'},
        BadTarget{"character_refused", u"Der Name enthält Zeichen, die hier nicht erlaubt sind",
                  Stick, u"Bild: 1"_s},
        BadTarget{"file_read_only", u"Die Datei ist schreibgeschützt", ReadOnlyFile},
        BadTarget{"file_immutable", u"Der Zugriff wurde verweigert", ImmutableFile},
        BadTarget{"folder_of_that_name", u"Unter diesem Namen gibt es einen Ordner",
                  FolderOfThatName, u"Ordner"_s}),
    [](const auto& info) { return std::string(info.param.name); });

/// The settings let a profile choose no type at all.
TEST_F(SavingStory, ANameWithoutAnExtensionIsRefused) {
    MakeSinglePhoto([this] { Setting<QComboBox>("FileTypCombo").setCurrentIndex(-1); });
    driver.Answer({installation.Path("saved/Bildname"), u"Der Name hat keine Endung"_s});
    Trigger(u"acSaveImageFast"_s);
    EXPECT_EQ(SavedFiles(), QStringList());
}

}  // namespace kadrona::testing
