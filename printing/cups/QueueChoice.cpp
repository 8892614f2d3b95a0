#include "printing/cups/QueueChoice.h"

#include "platform/HarmlessText.h"
#include "printing/PrinterSettingsFile.h"

namespace kadrona::printing::cups {

DeviceMode StandardMode(const Queue& queue, const Driver& driver) {
    DeviceMode mode = driver.Defaults();
    mode.Set(DeviceMode::Copies, QByteArray::number(queue.copies));
    mode.SetSheetOrientation(Orientation::Automatic);
    return mode;
}

PrinterChoice ChoiceOf(const Queue& queue, DeviceMode mode) {
    const QString name = QString::fromUtf8(queue.name);
    mode.Remove(DeviceMode::QueueName);
    if (StoredName(name) != name) {
        mode.Set(DeviceMode::QueueName, queue.name);
    }
    mode.Remove(DeviceMode::AnnouncedUri);
    if (queue.isAnnounced) {
        mode.Set(DeviceMode::AnnouncedUri, queue.announcedUri);
    }
    return {name, queue.model, queue.deviceUri, mode.ToBlock()};
}

Queue QueueOf(const PrinterChoice& choice) {
    Queue queue;
    queue.name = QueueNameOf(choice);
    queue.description = platform::HarmlessLine(QString::fromUtf8(queue.name));
    queue.model = choice.driver;
    queue.announcedUri = DeviceMode(choice.deviceMode).Value(DeviceMode::AnnouncedUri);
    queue.isAnnounced = IsAnnouncedUri(queue.announcedUri);
    return queue;
}

QByteArray QueueNameOf(const PrinterChoice& choice) {
    const QByteArray whole = DeviceMode(choice.deviceMode).Value(DeviceMode::QueueName);
    const bool isWhole = StoredName(QString::fromUtf8(whole)) == choice.device;
    return isWhole ? whole : choice.device.toUtf8();
}

}  // namespace kadrona::printing::cups
