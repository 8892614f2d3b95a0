#include "printing/cups/service/ask/Announced.h"

#include <cups/cups.h>
#include <unistd.h>

#include <memory>
#include <string_view>

namespace kadrona::printing::cups {

namespace {

struct IppDeleter {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using Message = std::unique_ptr<ipp_t, IppDeleter>;

bool IsOfThisMachine(std::string_view server) {
    return server.starts_with('/') || server.starts_with("localhost") ||
           server.starts_with("127.") || server.starts_with("[::1]");
}

/// libcups hands over one printer.
int AddPrinter(void* message, unsigned flags, cups_dest_t* printer) {
    auto* answer = static_cast<ipp_t*>(message);
    if ((flags & CUPS_DEST_FLAGS_REMOVED) != 0) {
        return 1;
    }
    if (ippFirstAttribute(answer) != nullptr) {
        ippAddSeparator(answer);
    }
    const auto add = [&](ipp_tag_t tag, const char* name, const char* value) {
        if (value != nullptr) {
            ippAddString(answer, IPP_TAG_PRINTER, tag, name, nullptr, value);
        }
    };
    const auto option = [&](const char* name) {
        return cupsGetOption(name, printer->num_options, printer->options);
    };
    add(IPP_TAG_NAME, "printer-name", printer->name);
    add(IPP_TAG_URI, "device-uri", option("device-uri"));
    ippAddBoolean(answer, IPP_TAG_PRINTER, "printer-is-temporary", 1);
    for (const char* text : {"printer-info", "printer-location", "printer-make-and-model"}) {
        add(IPP_TAG_TEXT, text, option(text));
    }
    return 1;
}

}  // namespace

AskCode FindAnnounced(const char* server, int milliseconds) {
    if (*server != '\0') {
        cupsSetServer(server);
    }
    const Message answer(ippNew());
    ippSetVersion(answer.get(), 2, 0);
    ippSetStatusCode(answer.get(), IPP_STATUS_OK);
    ippSetRequestId(answer.get(), 1);
    if (IsOfThisMachine(cupsServer())) {
        // The queues that there are already are the service's to tell.
        cupsEnumDests(CUPS_DEST_FLAGS_NONE, milliseconds, nullptr, CUPS_PRINTER_DISCOVERED,
                      CUPS_PRINTER_DISCOVERED, AddPrinter, answer.get());
    }
    return ippWriteFile(STDOUT_FILENO, answer.get()) == IPP_STATE_DATA ? AskCode::Answered
                                                                       : AskCode::Silent;
}

}  // namespace kadrona::printing::cups
