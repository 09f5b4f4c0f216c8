// A scripted media reader: every answer is a field of the current profile, chosen by path when the
// file is opened, and the calls that change state are recorded.
#pragma once

#include "FFDecoder.h"

#include <QList>
#include <QMap>
#include <QString>

#include <cstdint>
#include <cstring>

struct FakeMedia {
    bool opens = true;
    QString error;
    std::int32_t durationLow = 0;
    std::int32_t durationHigh = 0;
    std::int32_t sizeLow = 0;
    int video = 0;
    int audio = 1;
    int subtitle = -1;
    int videoCount = 1;
    int audioCount = 1;
    int subtitleCount = 0;
    QString videoCodec = QStringLiteral("h264 (H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10)");
    std::int32_t width = 160;
    std::int32_t height = 120;
    std::int32_t videoBitRate = 0;
    std::int32_t rateNum = 25;
    std::int32_t rateDen = 1;
    std::int32_t darNum = 4;
    std::int32_t darDen = 3;
    float dar = 4.0F / 3.0F;
    std::int32_t videoDurationLow = 0;
    QString videoLanguage;
    QString audioCodec = QStringLiteral("aac (AAC (Advanced Audio Coding))");
    std::int32_t audioBitRate = 128000;
    std::int32_t sampleRate = 44100;
    std::int32_t channels = 2;
    std::int32_t audioDurationLow = 0;
    QString audioLanguage;
    QString title, comment, author, album, genre, copyright;
    std::int32_t year = 0;
    std::int32_t track = 0;
    bool decodes = true;
    bool draws = true;
    std::uint32_t pixel = 0xFF3366CCu; // BGRA bytes CC 66 33 FF: a colour that survives a bitmap
};

class FakeDecoder : public morvane::FFDecoder {
public:
    QMap<QString, FakeMedia> media; // by path; unknown paths use fallback
    FakeMedia fallback;
    int opens = 0;
    int closes = 0;
    bool frameDecoding = false;
    QList<std::int64_t> seeks;

    bool OpenFile(const QString& path, const QString&) override {
        ++opens;
        m = media.value(path, fallback);
        m_open = m.opens;
        return m.opens;
    }
    void CloseFile() override {
        ++closes;
        m_open = false;
    }
    QString LastErrorMessage() const override { return m.error; }

    std::int32_t GetFileInfoDurationLow() const override { return m.durationLow; }
    std::int32_t GetFileInfoDurationHigh() const override { return m.durationHigh; }
    std::int32_t FileSizeLow() const override { return m.sizeLow; }
    QString GetFileInfoTitle() const override { return m.title; }
    QString GetFileInfoComment() const override { return m.comment; }
    QString GetFileInfoAuthor() const override { return m.author; }
    QString GetFileInfoAlbum() const override { return m.album; }
    QString GetFileInfoGenre() const override { return m.genre; }
    QString GetFileInfoCopyright() const override { return m.copyright; }
    std::int32_t GetFileInfoYear() const override { return m.year; }
    std::int32_t GetFileInfoTrack() const override { return m.track; }

    int FirstVideoStreamIndex() const override { return m.video; }
    int FirstAudioStreamIndex() const override { return m.audio; }
    int FirstSubtitleStreamIndex() const override { return m.subtitle; }
    bool IsVideoStream(int s) const override { return s >= 0 && s == m.video; }
    bool IsAudioStream(int s) const override { return s >= 0 && s == m.audio; }
    bool IsSubtitleStream(int s) const override { return s >= 0 && s == m.subtitle; }
    int VideoStreamCount() const override { return m.videoCount; }
    int AudioStreamCount() const override { return m.audioCount; }
    int SubtitleStreamCount() const override { return m.subtitleCount; }

    QString GetVideoInfosCodecName(int s) const override { return isV(s) ? m.videoCodec : QString(); }
    std::int32_t GetVideoInfosWidth(int s) const override { return isV(s) ? m.width : 0; }
    std::int32_t GetVideoInfosHeight(int s) const override { return isV(s) ? m.height : 0; }
    std::int32_t GetVideoInfosBitRate(int s) const override { return isV(s) ? m.videoBitRate : 0; }
    std::int32_t GetVideoInfosFrameRateNumerator(int s) const override { return isV(s) ? m.rateNum : 0; }
    std::int32_t GetVideoInfosFrameRateDenominator(int s) const override { return isV(s) ? m.rateDen : 0; }
    std::int32_t GetVideoInfosDARNumerator(int s) const override { return isV(s) ? m.darNum : 0; }
    std::int32_t GetVideoInfosDARDenominator(int s) const override { return isV(s) ? m.darDen : 0; }
    float GetVideoInfosDisplayAspectRatio(int s) const override { return isV(s) ? m.dar : 0.0F; }
    std::int32_t GetVideoInfosDurationLow(int s) const override { return isV(s) ? m.videoDurationLow : 0; }
    QString GetVideoInfosLanguage(int s) const override { return isV(s) ? m.videoLanguage : QString(); }

    QString GetAudioInfosCodecName(int s) const override { return isA(s) ? m.audioCodec : QString(); }
    std::int32_t GetAudioInfosBitRate(int s) const override { return isA(s) ? m.audioBitRate : 0; }
    std::int32_t GetAudioInfosSampleRate(int s) const override { return isA(s) ? m.sampleRate : 0; }
    std::int32_t GetAudioInfosChannels(int s) const override { return isA(s) ? m.channels : 0; }
    std::int32_t GetAudioInfosDurationLow(int s) const override { return isA(s) ? m.audioDurationLow : 0; }
    QString GetAudioInfosLanguage(int s) const override { return isA(s) ? m.audioLanguage : QString(); }

    void SetFrameDecoding(bool on) override { frameDecoding = on; }
    bool SeekTo(std::int32_t& low, std::int32_t& high, int) override {
        seeks.append((static_cast<std::int64_t>(high) << 32) | static_cast<std::uint32_t>(low));
        return true;
    }
    bool ReadNextFrame(int) override { return m_open && m.decodes; }
    bool DrawFrame(std::uint8_t* bgra, int width, int height, int bytesPerLine, bool) override {
        if (!m.draws) return false;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                std::memcpy(bgra + y * bytesPerLine + x * 4, &m.pixel, 4);
        return true;
    }

private:
    bool isV(int s) const { return m_open && s >= 0 && s == m.video; }
    bool isA(int s) const { return m_open && s >= 0 && s == m.audio; }
    FakeMedia m;
    bool m_open = false;
};
