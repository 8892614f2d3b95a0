#include "platform/FailureText.h"

#include <new>

#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

namespace {

const QString TooLittleMemory = u"Für diesen Vorgang reicht der Arbeitsspeicher nicht aus."_s;

/// As OpenCV and its threads say it.
bool TellsOfMemory(const QString& said) {
    return said.contains(u"Insufficient memory"_s) ||
           said.contains(u"Resource temporarily unavailable"_s);
}

}  // namespace

QString FailureText(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const Error& error) {
        return error.Text();
    } catch (const std::bad_alloc&) {
        return TooLittleMemory;
    } catch (const std::exception& error) {
        const QString said = QString::fromUtf8(error.what());
        return TellsOfMemory(said)
                   ? TooLittleMemory
                   : u"Der Vorgang konnte nicht ausgeführt werden.\n\n%1"_s.arg(said);
    } catch (...) {
        return u"Der Vorgang konnte wegen eines unbekannten Fehlers nicht ausgeführt werden."_s;
    }
}

}  // namespace kadrona::platform
