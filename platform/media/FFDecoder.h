// The media reader behind probing and thumbnails: one open file at a time, asked stream by stream.
// Durations and positions are signed 64-bit microsecond counts split into Low and High 32-bit words;
// Low 0 with High 0x80000000 means "no value". Stream arguments are container stream indexes.
//
// A reader is used from one thread at a time (the main thread for probing). Every query on a closed
// reader or on an index that is not a stream of the asked kind answers 0, -1, "" or false; nothing
// throws. After a failure LastErrorMessage() holds the library's words, e.g. "Invalid data found when
// processing input", and may be empty.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>

namespace morvane {

class FFDecoder {
public:
    virtual ~FFDecoder() = default;

    virtual bool OpenFile(const QString& path, const QString& options) = 0;
    virtual void CloseFile() = 0;
    virtual QString LastErrorMessage() const = 0;

    virtual std::int32_t GetFileInfoDurationLow() const = 0;
    virtual std::int32_t GetFileInfoDurationHigh() const = 0;
    virtual std::int32_t FileSizeLow() const = 0;
    virtual QString GetFileInfoTitle() const = 0;
    virtual QString GetFileInfoComment() const = 0;
    virtual QString GetFileInfoAuthor() const = 0;
    virtual QString GetFileInfoAlbum() const = 0;
    virtual QString GetFileInfoGenre() const = 0;
    virtual QString GetFileInfoCopyright() const = 0;
    virtual std::int32_t GetFileInfoYear() const = 0;
    virtual std::int32_t GetFileInfoTrack() const = 0;

    virtual int FirstVideoStreamIndex() const = 0;
    virtual int FirstAudioStreamIndex() const = 0;
    virtual int FirstSubtitleStreamIndex() const = 0;
    virtual bool IsVideoStream(int stream) const = 0;
    virtual bool IsAudioStream(int stream) const = 0;
    virtual bool IsSubtitleStream(int stream) const = 0;
    virtual int VideoStreamCount() const = 0;
    virtual int AudioStreamCount() const = 0;
    virtual int SubtitleStreamCount() const = 0;

    // "short (long)", e.g. "h264 (H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10)"; "" for no such stream.
    virtual QString GetVideoInfosCodecName(int stream) const = 0;
    virtual std::int32_t GetVideoInfosWidth(int stream) const = 0;
    virtual std::int32_t GetVideoInfosHeight(int stream) const = 0;
    virtual std::int32_t GetVideoInfosBitRate(int stream) const = 0;
    virtual std::int32_t GetVideoInfosFrameRateNumerator(int stream) const = 0; // 0: unknown
    virtual std::int32_t GetVideoInfosFrameRateDenominator(int stream) const = 0;
    virtual std::int32_t GetVideoInfosDARNumerator(int stream) const = 0;
    virtual std::int32_t GetVideoInfosDARDenominator(int stream) const = 0;
    virtual float GetVideoInfosDisplayAspectRatio(int stream) const = 0;
    virtual std::int32_t GetVideoInfosDurationLow(int stream) const = 0;
    virtual QString GetVideoInfosLanguage(int stream) const = 0;

    virtual QString GetAudioInfosCodecName(int stream) const = 0;
    virtual std::int32_t GetAudioInfosBitRate(int stream) const = 0;
    virtual std::int32_t GetAudioInfosSampleRate(int stream) const = 0; // Hertz
    virtual std::int32_t GetAudioInfosChannels(int stream) const = 0;
    virtual std::int32_t GetAudioInfosDurationLow(int stream) const = 0;
    virtual QString GetAudioInfosLanguage(int stream) const = 0;

    // Prepares decoding; set once before the first seek.
    virtual void SetFrameDecoding(bool on) = 0;
    // Moves to the position in microseconds (the nearest frame at or after it once decoded).
    virtual bool SeekTo(std::int32_t& positionLow, std::int32_t& positionHigh, int flags) = 0;
    // Decodes the next frame of the stream (-1: of the first video stream); true when one was decoded.
    virtual bool ReadNextFrame(int stream) = 0;
    // Paints the last decoded frame into a 32-bit BGRA buffer of width x height pixels with
    // bytesPerLine bytes per row; with fit, the picture keeps its display aspect and is centred on
    // black. Returns true when painted.
    virtual bool DrawFrame(std::uint8_t* bgra, int width, int height, int bytesPerLine, bool fit) = 0;
};

// The reader over the FFmpeg libraries.
std::unique_ptr<FFDecoder> Make_FFDecoder();

} // namespace morvane
