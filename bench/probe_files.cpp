// Probe plus thumbnail for each path given, the way the file list takes in a file: open, read every
// field, seek to 7 s when the file is that long, decode one frame and draw it into 160 x 120.
// Prints how many files opened and how many gave a picture; the caller times the whole process.
#include "FFDecoder.h"

#include <QString>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

using namespace morvane;

namespace {

// Reads what a probe reads, so that no query is skipped; the sum keeps the calls from being dropped.
std::int64_t readFields(FFDecoder& d) {
    std::int64_t sum = d.FileSizeLow() + d.GetFileInfoYear() + d.GetFileInfoTrack();
    sum += d.GetFileInfoTitle().size() + d.GetFileInfoComment().size() + d.GetFileInfoAuthor().size() +
           d.GetFileInfoAlbum().size() + d.GetFileInfoGenre().size() + d.GetFileInfoCopyright().size();
    const int video = d.FirstVideoStreamIndex();
    const int audio = d.FirstAudioStreamIndex();
    const int subtitle = d.FirstSubtitleStreamIndex();
    sum += d.VideoStreamCount() + d.AudioStreamCount() + d.SubtitleStreamCount();
    sum += d.IsVideoStream(video) + d.IsAudioStream(audio) + d.IsSubtitleStream(subtitle);
    sum += d.GetVideoInfosCodecName(video).size() + d.GetVideoInfosWidth(video) +
           d.GetVideoInfosHeight(video) + d.GetVideoInfosBitRate(video) +
           d.GetVideoInfosFrameRateNumerator(video) + d.GetVideoInfosFrameRateDenominator(video) +
           d.GetVideoInfosDARNumerator(video) + d.GetVideoInfosDARDenominator(video) +
           std::lround(d.GetVideoInfosDisplayAspectRatio(video)) + d.GetVideoInfosDurationLow(video) +
           d.GetVideoInfosLanguage(video).size();
    sum += d.GetAudioInfosCodecName(audio).size() + d.GetAudioInfosBitRate(audio) +
           d.GetAudioInfosSampleRate(audio) + d.GetAudioInfosChannels(audio) +
           d.GetAudioInfosDurationLow(audio) + d.GetAudioInfosLanguage(audio).size();
    return sum;
}

} // namespace

int main(int argc, char** argv) {
    constexpr int width = 160;
    constexpr int height = 120;
    std::vector<std::uint8_t> picture(static_cast<size_t>(width) * height * 4);
    const auto decoder = Make_FFDecoder();
    int opened = 0;
    int drawn = 0;
    std::int64_t checksum = 0;
    for (int i = 1; i < argc; ++i) {
        FFDecoder& d = *decoder;
        if (!d.OpenFile(QString::fromLocal8Bit(argv[i]), QString())) continue;
        ++opened;
        const std::int32_t low = d.GetFileInfoDurationLow();
        const std::int32_t high = d.GetFileInfoDurationHigh();
        const bool known = !(low == 0 && high == static_cast<std::int32_t>(0x80000000u));
        const std::int64_t duration =
            known ? static_cast<std::int64_t>(
                        (static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32) |
                        static_cast<std::uint32_t>(low))
                  : 0;
        checksum += readFields(d);
        d.SetFrameDecoding(true);
        if (std::nearbyint(duration / 1e6) >= 7) {
            std::int32_t seekLow = 7000000;
            std::int32_t seekHigh = 0;
            d.SeekTo(seekLow, seekHigh, 0);
        }
        if (d.ReadNextFrame(-1) && d.DrawFrame(picture.data(), width, height, width * 4, true)) {
            ++drawn;
            checksum += picture[static_cast<size_t>(width) * 4 * (height / 2) + width * 2];
        }
        d.CloseFile();
    }
    std::printf("files %d opened %d drawn %d checksum %lld\n", argc - 1, opened, drawn,
                static_cast<long long>(checksum));
    return 0;
}
