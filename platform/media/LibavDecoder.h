// FFDecoder over libavformat, libavcodec and libswscale. Every library object is owned by a
// unique_ptr with its deleter, so closing, reopening and every failure path free what they hold.
//
// Choices where the library has no single answer:
// - Bit rates are the stream's own figure; 0 when the container states none (raw streams, most
//   Matroska video). Stream durations are 0 when unknown, never estimated.
// - The frame rate is the stream's average rate, else its base rate, as the stream gives the fraction
//   (24000/1001 stays so); unknown is 0/1.
// - The display aspect is the sample aspect times the picture size, reduced; an unset sample aspect
//   counts as square. Unknown sizes give 0/1 and 0.
// - Year and track are the leading number of the "date" (else "year") and "track" tags, 0 without.
//   The author is the "artist" tag, else "author".
// - SeekTo takes the position from the start of the file (the container's start time is added),
//   seeks back to a key frame (from the first byte when the file has no index to seek by) and decodes
//   forward; the first frame at or after the position is kept for the next ReadNextFrame and its time
//   is written back. Past the last frame it lands on the last one. The flags are not used.
// - ReadNextFrame decodes video only and needs SetFrameDecoding(true); otherwise, or for an audio or
//   absent stream, it fails. After the last frame it fails with "End of file".
// - Every library call that reads (open, seek, one frame) is cut off after 20 s, and the packets read
//   for one frame are capped, so no input can hang the caller; no packets are ever queued here.
// - A query on an open file with an index of the wrong kind answers as for no stream and leaves
//   "Stream not found" as the last error; queries on a closed reader leave the last error alone, so
//   an open failure's text survives them.
#pragma once

#include "FFDecoder.h"
#include "LibavHandles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <chrono>
#include <memory>

namespace morvane {

using FormatContextPtr = libav::InputPtr;
using CodecContextPtr = libav::CodecPtr;
using FramePtr = libav::FramePtr;
using PacketPtr = libav::PacketPtr;
using SwsContextPtr = libav::SwsPtr;

class LibavDecoder final : public FFDecoder {
public:
    LibavDecoder();
    ~LibavDecoder() override;
    LibavDecoder(const LibavDecoder&) = delete;
    LibavDecoder& operator=(const LibavDecoder&) = delete;

    bool OpenFile(const QString& path, const QString& options) override;
    void CloseFile() override;
    QString LastErrorMessage() const override { return m_error; }

    std::int32_t GetFileInfoDurationLow() const override;
    std::int32_t GetFileInfoDurationHigh() const override;
    std::int32_t FileSizeLow() const override;
    QString GetFileInfoTitle() const override;
    QString GetFileInfoComment() const override;
    QString GetFileInfoAuthor() const override;
    QString GetFileInfoAlbum() const override;
    QString GetFileInfoGenre() const override;
    QString GetFileInfoCopyright() const override;
    std::int32_t GetFileInfoYear() const override;
    std::int32_t GetFileInfoTrack() const override;

    int FirstVideoStreamIndex() const override { return firstOf(AVMEDIA_TYPE_VIDEO); }
    int FirstAudioStreamIndex() const override { return firstOf(AVMEDIA_TYPE_AUDIO); }
    int FirstSubtitleStreamIndex() const override { return firstOf(AVMEDIA_TYPE_SUBTITLE); }
    bool IsVideoStream(int stream) const override { return isKind(stream, AVMEDIA_TYPE_VIDEO); }
    bool IsAudioStream(int stream) const override { return isKind(stream, AVMEDIA_TYPE_AUDIO); }
    bool IsSubtitleStream(int stream) const override { return isKind(stream, AVMEDIA_TYPE_SUBTITLE); }
    int VideoStreamCount() const override { return countOf(AVMEDIA_TYPE_VIDEO); }
    int AudioStreamCount() const override { return countOf(AVMEDIA_TYPE_AUDIO); }
    int SubtitleStreamCount() const override { return countOf(AVMEDIA_TYPE_SUBTITLE); }

    QString GetVideoInfosCodecName(int stream) const override;
    std::int32_t GetVideoInfosWidth(int stream) const override;
    std::int32_t GetVideoInfosHeight(int stream) const override;
    std::int32_t GetVideoInfosBitRate(int stream) const override;
    std::int32_t GetVideoInfosFrameRateNumerator(int stream) const override;
    std::int32_t GetVideoInfosFrameRateDenominator(int stream) const override;
    std::int32_t GetVideoInfosDARNumerator(int stream) const override;
    std::int32_t GetVideoInfosDARDenominator(int stream) const override;
    float GetVideoInfosDisplayAspectRatio(int stream) const override;
    std::int32_t GetVideoInfosDurationLow(int stream) const override;
    QString GetVideoInfosLanguage(int stream) const override;

    QString GetAudioInfosCodecName(int stream) const override;
    std::int32_t GetAudioInfosBitRate(int stream) const override;
    std::int32_t GetAudioInfosSampleRate(int stream) const override;
    std::int32_t GetAudioInfosChannels(int stream) const override;
    std::int32_t GetAudioInfosDurationLow(int stream) const override;
    QString GetAudioInfosLanguage(int stream) const override;

    void SetFrameDecoding(bool on) override;
    bool SeekTo(std::int32_t& positionLow, std::int32_t& positionHigh, int flags) override;
    bool ReadNextFrame(int stream) override;
    bool DrawFrame(std::uint8_t* bgra, int width, int height, int bytesPerLine, bool fit) override;

private:
    enum class Step { Frame, Again, End, Failed };

    int firstOf(AVMediaType kind) const;
    bool isKind(int stream, AVMediaType kind) const;
    int countOf(AVMediaType kind) const;
    // The stream at that index when it is of that kind; otherwise null, noting "Stream not found".
    const AVStream* streamOf(int stream, AVMediaType kind) const;
    QString tag(const char* key) const;
    AVRational displayAspect(const AVStream* stream) const;

    bool fail(int code);
    void startDeadline();
    static int interrupted(void* self);
    bool prepareDecoder(int stream);
    // Moves the decoder on by one frame into m_frame, reading packets as needed.
    Step decodeStep();

    FormatContextPtr m_format;
    CodecContextPtr m_codec;
    FramePtr m_frame;   // decoded, not yet shown
    FramePtr m_shown;   // the last frame handed out by ReadNextFrame, drawn by DrawFrame
    FramePtr m_pending; // found by SeekTo, handed out by the next ReadNextFrame
    PacketPtr m_packet;
    SwsContextPtr m_scaler;
    int m_decodedStream = -1;
    bool m_draining = false;
    bool m_frameDecoding = false;
    std::int64_t m_fileSize = 0;
    std::chrono::steady_clock::time_point m_deadline;
    mutable QString m_error;
};

} // namespace morvane
