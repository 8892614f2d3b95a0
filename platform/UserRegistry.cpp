#include "platform/UserRegistry.h"

#include <QSettings>
#include <QVariant>

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// The settings of the program at the group "Save", without those of the whole machine.
class SaveKey {
 public:
    SaveKey() {
        settings_.setFallbacksEnabled(false);
        settings_.beginGroup(u"Save"_s);
    }

    QVariant Value(const QString& name) const { return settings_.value(name); }
    void SetValue(const QString& name, const QVariant& value) { settings_.setValue(name, value); }

 private:
    QSettings settings_{QSettings::NativeFormat, QSettings::UserScope, u"Veltmark"_s, u"Kadrona"_s};
};

}  // namespace

int ReadRegistryInteger(const QString& name) {
    return SaveKey().Value(name).toInt();
}

QString ReadRegistryText(const QString& name) {
    return SaveKey().Value(name).toString();
}

void WriteRegistryInteger(const QString& name, int value) {
    SaveKey().SetValue(name, value);
}

void WriteRegistryText(const QString& name, const QString& value) {
    SaveKey().SetValue(name, value);
}

}  // namespace kadrona::platform
