// Asks the print service one question, apart from the program: a service that never answers or
// answers without end costs this process, which the program ends, and not the window.
//
//   kadrona-ask-cups ask HOST:PORT|SOCKET RESOURCE SECONDS [DOCUMENT]   IPP request in, answer out
//   kadrona-ask-cups get HOST:PORT|SOCKET RESOURCE SECONDS              what stands there out
//   kadrona-ask-cups make HOST:PORT|SOCKET QUEUE SECONDS    IPP request that makes a queue for a
//                                                           printer in, the queue's attributes out
//   kadrona-ask-cups find HOST:PORT|SOCKET "" SECONDS       what the network announces out
//
// An empty server is the one that libcups finds. Ends with one of the codes of AskCodes.h; with
// `Refused` the standard output has libcups' status as a number.
#include <cups/cups.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "printing/cups/service/AskCodes.h"
#include "printing/cups/service/ask/Announced.h"

namespace {

using kadrona::printing::cups::AskCode;
using kadrona::printing::cups::FindAnnounced;
using kadrona::printing::cups::GraceSeconds;

/// libcups would otherwise ask on the terminal and wait there.
const char* NoPassword(const char*, http_t*, const char*, const char*, void*) {
    return nullptr;
}

[[noreturn]] void End(AskCode code) {
    _exit(static_cast<int>(code));
}

/// libcups calls itself for each collection that lies in another.
void EndWithTheStack() {
    static std::array<char, 1 << 16> otherStack;
    const stack_t stack{.ss_sp = otherStack.data(), .ss_flags = 0, .ss_size = otherStack.size()};
    struct sigaction ending = {};
    ending.sa_flags = SA_ONSTACK;
    ending.sa_handler = [](int) { End(AskCode::Unreadable); };
    sigaltstack(&stack, nullptr);
    sigaction(SIGSEGV, &ending, nullptr);
}

/// Whatever goes wrong, this process neither outlives the program nor fills the memory.
void LimitThisProcess(unsigned seconds) {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they reserve terabytes
    constexpr rlim_t MostMemory = rlim_t{1} << 29;
    const rlimit memory{MostMemory, MostMemory};
    setrlimit(RLIMIT_AS, &memory);
#endif
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    alarm(seconds);
    EndWithTheStack();
}

http_t* Connect(const std::string& server, int milliseconds) {
    std::string host = server;
    int port = ippPort();
    if (server.empty()) {
        host = cupsServer();
    } else if (const size_t colon = server.rfind(':');
               server.front() != '/' && colon != std::string::npos &&
               server.find(']', colon) == std::string::npos) {
        host = server.substr(0, colon);
        port = std::atoi(server.c_str() + colon + 1);
    }
    return httpConnect2(host.c_str(), port, nullptr, AF_UNSPEC, cupsEncryption(), 1, milliseconds,
                        nullptr);
}

AskCode Refusal() {
    std::printf("%d", static_cast<int>(cupsLastError()));
    return std::fflush(stdout) == 0 ? AskCode::Refused : AskCode::Silent;
}

/// Null where none comes.
ipp_t* ReadRequest() {
    ipp_t* request = ippNew();
    if (ippReadFile(STDIN_FILENO, request) == IPP_STATE_DATA) {
        return request;
    }
    ippDelete(request);
    return nullptr;
}

/// Takes the answer, which may be null.
AskCode HandOn(ipp_t* answer) {
    if (answer == nullptr) {
        return Refusal();
    }
    ippSetState(answer, IPP_STATE_IDLE);
    const bool isWritten = ippWriteFile(STDOUT_FILENO, answer) == IPP_STATE_DATA;
    ippDelete(answer);
    return isWritten ? AskCode::Answered : AskCode::Silent;
}

AskCode Ask(http_t* http, const char* resource, const char* document) {
    ipp_t* request = ReadRequest();
    return request == nullptr ? AskCode::Silent
                              : HandOn(cupsDoFileRequest(http, request, resource, document));
}

ipp_t* AttributesOf(http_t* http, const char* queue) {
    std::array<char, HTTP_MAX_URI> uri{};
    httpAssembleURIf(HTTP_URI_CODING_ALL, uri.data(), uri.size(), "ipp", nullptr, "localhost", 0,
                     "/printers/%s", queue);
    ipp_t* request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.data());
    return cupsDoRequest(http, request, "/");
}

bool Succeeded(ipp_t* answer) {
    return ippGetStatusCode(answer) < IPP_STATUS_REDIRECTION_OTHER_SITE;
}

/// The service asks the printer what it can do before the queue takes jobs, and tells in no way
/// that it has given up.
bool TakesJobs(ipp_t* attributes) {
    ipp_attribute_t* accepts =
        ippFindAttribute(attributes, "printer-is-accepting-jobs", IPP_TAG_BOOLEAN);
    return accepts != nullptr && ippGetBoolean(accepts, 0) != 0;
}

AskCode Make(http_t* http, const char* queue, int seconds) {
    constexpr useconds_t Pause = 100'000;
    // A little less than the program waits, so that what the service tells last is heard.
    constexpr int TriesInASecond = 9;
    ipp_t* request = ReadRequest();
    if (request == nullptr) {
        return AskCode::Silent;
    }
    ipp_t* answer = cupsDoRequest(http, request, "/");
    // Where it is there already, and perhaps not yet ready, that is not possible.
    if (answer != nullptr && !Succeeded(answer) &&
        ippGetStatusCode(answer) != IPP_STATUS_ERROR_NOT_POSSIBLE) {
        return HandOn(answer);
    }
    for (int tries = (seconds - GraceSeconds) * TriesInASecond; tries > 0; --tries) {
        ippDelete(answer);
        answer = AttributesOf(http, queue);
        if (answer == nullptr || !Succeeded(answer) || TakesJobs(answer)) {
            break;
        }
        usleep(Pause);
    }
    return HandOn(answer);
}

AskCode Get(http_t* http, const char* resource) {
    switch (cupsGetFd(http, resource, STDOUT_FILENO)) {
        case HTTP_STATUS_OK:
            return AskCode::Answered;
        case HTTP_STATUS_NOT_FOUND:
            return AskCode::Missing;
        default:
            return AskCode::Silent;
    }
}

}  // namespace

/// In the place of the C library's `recv`: all that libcups hears passes here. It bounds neither
/// how often it is sent elsewhere nor what is said on the way.
extern "C" [[gnu::visibility("default")]] ssize_t Receive(int socket, void* bytes, size_t size,
                                                          int flags) __asm__("recv");
extern "C" ssize_t Receive(int socket, void* bytes, size_t size, int flags) {
    constexpr ssize_t MostBytes = 64 << 20;  // some seconds of a queue's answers while it is made
    static ssize_t received = 0;
    const ssize_t count = recvfrom(socket, bytes, size, flags, nullptr, nullptr);
    received += std::max<ssize_t>(count, 0);
    if (received > MostBytes) {
        End(AskCode::TooLarge);
    }
    return count;
}

int main(int count, char** arguments) {
    if (count < 5) {
        std::fputs("usage: kadrona-ask-cups ask|get|make|find SERVER RESOURCE SECONDS [DOCUMENT]\n",
                   stderr);
        return static_cast<int>(AskCode::Usage);
    }
    const int seconds = std::max(std::atoi(arguments[4]), 1);
    const std::string what = arguments[1];
    LimitThisProcess(static_cast<unsigned>(seconds));
    if (what == "find") {
        return static_cast<int>(FindAnnounced(arguments[2], (seconds - GraceSeconds) * 900));
    }
    cupsSetPasswordCB2(NoPassword, nullptr);
    http_t* http = Connect(arguments[2], seconds * 1000);
    if (http == nullptr) {
        return static_cast<int>(AskCode::NoService);
    }
    const AskCode code = what == "ask" ? Ask(http, arguments[3], count > 5 ? arguments[5] : nullptr)
                         : what == "make" ? Make(http, arguments[3], seconds)
                                          : Get(http, arguments[3]);
    httpClose(http);
    return static_cast<int>(code);
}
