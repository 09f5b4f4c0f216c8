// The argument dialect's parsers over arbitrary text, and the output check on what they accept. The
// first byte picks the output's extension; the rest is the argument text.
#include "EncoderOptions.h"
#include "FuzzSupport.h"
#include "Transcoder.h"

#include <string>
#include <string_view>

using namespace morvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static const char* const extensions[] = {"mp4", "mkv", "avi", "ts",  "mp3",
                                             "wav", "flv", "3gp", "xyz", ""};
    const std::string output =
        std::string("out.") + extensions[data[0] % (sizeof extensions / sizeof extensions[0])];
    const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

    EncoderOptions options;
    std::string error;
    if (Parse_EncoderOptions(text, options, error)) {
        fuzz::require(!(options.noAudio && options.noVideo));
        fuzz::require(options.channels >= 0 && options.channels <= 64);
        fuzz::require(options.sampleRate >= 0 && options.sampleRate <= 768000);
        fuzz::require(options.audioBitrate >= 0 && options.videoBitrate >= 0);
        fuzz::require(options.frameRate.isSet() || options.frameRate.num == 0);
        fuzz::require(options.aspect.isSet() || options.aspect.num == 0);
        fuzz::require(options.durationUs == -1 || options.durationUs > 0);
        std::string outputError;
        if (!Check_Output(output, options, outputError)) fuzz::require(!outputError.empty());
    } else {
        fuzz::require(!error.empty());
    }

    InputOptions input;
    error.clear();
    if (Parse_InputOptions(text, input, error))
        fuzz::require(input.seekUs >= 0);
    else
        fuzz::require(!error.empty());
    return 0;
}
