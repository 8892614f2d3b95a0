// kadrona-decode: decodes one file for the program that starts it
// (imaging/reading/DecodingProcess.h), which gives it the memory and the channel; of no use by
// itself.
#include <malloc.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QThread>

#include "imaging/reading/decoder/DecodingHost.h"
#include "platform/HelperProcess.h"
#include "platform/ProgramPart.h"
#include "platform/confinement/Confinement.h"

using namespace kadrona;
using imaging::DecodingHost;

namespace {

/// The picture, what its library takes beside it, and the file, as docs/trust.md has them; and what
/// threads reserve without using it.
platform::ProcessLimits Limits() {
    constexpr qint64 LargestPicture = 4 * imaging::ReadOptions{}.maximumPixels;
    constexpr qint64 LargestFile = 200'000'000;
    constexpr qint64 LargestProfile = 1 << 24;
    constexpr qint64 Heaps = 300'000'000;
    constexpr qint64 BytesAThread = 32'000'000;
    return {.memory = LargestPicture + imaging::MostBytesBesideOfCameras + LargestFile + Heaps +
                      QThread::idealThreadCount() * BytesAThread,
            .file = LargestPicture + LargestProfile,
            .seconds = 420};
}

/// What the libraries need of the machine is done before the file is seen.
void Serve() {
    const auto decode = platform::PartFunction<decltype(kadrona_decode_camera_file)>(
        "kadrona-cameras", "kadrona_decode_camera_file");
    platform::PartFunction<decltype(kadrona_prepare_camera_files)>(
        "kadrona-cameras", "kadrona_prepare_camera_files")();
    platform::Confine(Limits());
    if (const auto request = imaging::DecodingRequestFrom(platform::HearStarter())) {
        DecodingHost(*request).Answer(*decode);
    }
}

void Refuse(const platform::Error& error) {
    if (const auto request = imaging::DecodingRequestFrom(platform::HearStarter())) {
        platform::TellStarter(imaging::Packed(imaging::DecodingMessage(
            imaging::decoding::Failure{imaging::ReadErrorText(request->name, error.Text())})));
    }
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int MostHeaps = 2;  // each reserves a good deal of the address space
    platform::BindToStarter();
    (void)mallopt(M_ARENA_MAX, MostHeaps);
    const QCoreApplication application(argc, argv);
    try {
        Serve();
    } catch (const platform::Error& error) {  // a part is missing, or there are no bounds
        Refuse(error);
    }
    _exit(0);  // what was begun need not be tidied up
}
