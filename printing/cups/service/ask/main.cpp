// Asks the print service one question, apart from the program: a service that never answers or
// answers without end costs this process, which the program ends, and not the window.
//
//   kadrona-ask-cups ask HOST:PORT|SOCKET RESOURCE SECONDS [DOCUMENT]   IPP request in, answer out
//   kadrona-ask-cups get HOST:PORT|SOCKET RESOURCE SECONDS              what stands there out
//
// An empty server is the one that libcups finds. Ends with one of the codes of AskCodes.h; with
// `Refused` the standard output has libcups' status as a number.
#include <cups/cups.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "printing/cups/service/AskCodes.h"

namespace {

using kadrona::printing::cups::AskCode;

/// libcups would otherwise ask on the terminal and wait there.
const char* NoPassword(const char*, http_t*, const char*, const char*, void*) {
    return nullptr;
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

AskCode Ask(http_t* http, const char* resource, const char* document) {
    ipp_t* request = ippNew();
    if (ippReadFile(STDIN_FILENO, request) != IPP_STATE_DATA) {
        ippDelete(request);
        return AskCode::Silent;
    }
    ipp_t* answer = cupsDoFileRequest(http, request, resource, document);
    if (answer == nullptr) {
        return Refusal();
    }
    ippSetState(answer, IPP_STATE_IDLE);
    const bool isWritten = ippWriteFile(STDOUT_FILENO, answer) == IPP_STATE_DATA;
    ippDelete(answer);
    return isWritten ? AskCode::Answered : AskCode::Silent;
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

int main(int count, char** arguments) {
    if (count < 5) {
        std::fputs("usage: kadrona-ask-cups ask|get SERVER RESOURCE SECONDS [DOCUMENT]\n", stderr);
        return static_cast<int>(AskCode::Usage);
    }
    const int seconds = std::max(std::atoi(arguments[4]), 1);
    LimitThisProcess(static_cast<unsigned>(seconds));
    cupsSetPasswordCB2(NoPassword, nullptr);
    http_t* http = Connect(arguments[2], seconds * 1000);
    if (http == nullptr) {
        return static_cast<int>(AskCode::NoService);
    }
    const bool isRequest = std::string(arguments[1]) == "ask";
    const AskCode code = isRequest ? Ask(http, arguments[3], count > 5 ? arguments[5] : nullptr)
                                   : Get(http, arguments[3]);
    httpClose(http);
    return static_cast<int>(code);
}
