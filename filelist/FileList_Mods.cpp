#include "FileList_Mods.h"

#include "Aspect_Text.h"
#include "CheckedMath.h"
#include "File_Names.h"
#include "Globals.h"
#include "Preset_Mods.h"
#include "Report_List.h"
#include "mMain.h"

#include <QImage>

#include <limits>

namespace morvane {

namespace {

constexpr std::int32_t kNoValueHigh = std::numeric_limits<std::int32_t>::min();

enum class Outcome { Added, Failed, Quiet };

std::int32_t wholeFrameRate(std::int32_t numerator, std::int32_t denominator) {
    if (numerator == 0 || numerator == -1) return numerator;
    if (denominator == 0) throw RunTimeError("Division by zero");
    if (numerator == std::numeric_limits<std::int32_t>::min() && denominator == -1)
        throw RunTimeError("Overflow");
    return numerator / denominator; // C++ division truncates, as the whole-number division does
}

QString twoDecimals(double value) {
    return QString::number(value, 'f', 2);
}

// Draws the decoded frame into the hidden picture and saves it; returns the path, "" when the
// frame could not be drawn. A picture that can't be written is a run-time error.
QString saveThumbnail(FFDecoder& decoder) {
    const QString path = Folder_Temp + QStringLiteral("thumbnail_") + Row_NewId() + QStringLiteral(".bmp");
    QImage picture(kThumbnailWidth, kThumbnailHeight, QImage::Format_RGB32);
    picture.fill(Qt::black);
    if (!decoder.DrawFrame(picture.bits(), picture.width(), picture.height(),
                           static_cast<int>(picture.bytesPerLine()), true))
        return QString();
    if (!picture.save(path, "BMP")) throw RunTimeError("Path not found");
    return path;
}

void fillRow(const QString& path, FileViewMain& table, FFDecoder& decoder, std::int64_t duration,
             std::int32_t durationLowAsRead, int video, int audio, int subtitle) {
    const int row = table.addRow();
    table.setIcon(row, 0);

    const QString base = File_BaseName(path);
    const QString extension = File_ExtensionName(path);
    const QString seconds = twoDecimals(Time_ToSeconds(duration));

    table.setText(row, FileCol::Name, base);
    table.setText(row, FileCol::Format, extension.toUpper());
    table.setText(row, FileCol::Duration, Format_TimeCode(duration).left(8));
    table.setText(row, FileCol::Status, QString());
    table.setText(row, FileCol::SrcDuration, seconds);
    table.setSecond(row, FileCol::SrcDuration, seconds);
    table.setText(row, FileCol::FileName, base + QLatin1Char('.') + extension);
    table.setText(row, FileCol::FilePath, File_ParentFolder(path));
    table.setLong(row, FileCol::FileSize, decoder.FileSizeLow());
    table.setLong(row, FileCol::FileDuration, durationLowAsRead);
    table.setBool(row, FileCol::VideoStream, decoder.IsVideoStream(video));
    table.setBool(row, FileCol::AudioStream, decoder.IsAudioStream(audio));
    table.setBool(row, FileCol::SubtitleStream, subtitle != -1 && decoder.IsSubtitleStream(subtitle));
    table.setLong(row, FileCol::SubtitleCount, decoder.SubtitleStreamCount());
    table.setLong(row, FileCol::VideoStreamCount, decoder.VideoStreamCount());
    table.setText(row, FileCol::VideoCodecName,
                  Strip_Brackets(Trim_Spaces(decoder.GetVideoInfosCodecName(video))));
    const std::int32_t width = decoder.GetVideoInfosWidth(video);
    const std::int32_t height = decoder.GetVideoInfosHeight(video);
    table.setLong(row, FileCol::VideoWidth, width);
    table.setLong(row, FileCol::VideoHeight, height);
    table.setLong(row, FileCol::VideoBitRate, decoder.GetVideoInfosBitRate(video));
    const std::int32_t rate = decoder.GetVideoInfosFrameRateNumerator(video);
    const std::int32_t rateDenominator =
        rate == 0 || rate == -1 ? 1 : decoder.GetVideoInfosFrameRateDenominator(video);
    table.setLong(row, FileCol::VideoFrameRateNumerator, wholeFrameRate(rate, rateDenominator));
    table.setText(row, FileCol::VideoSampleAspectRatio,
                  Aspect_Text(width, height, decoder.GetVideoInfosDARNumerator(video),
                              decoder.GetVideoInfosDARDenominator(video),
                              static_cast<double>(decoder.GetVideoInfosDisplayAspectRatio(video))));
    table.setLong(row, FileCol::VideoDurationLow, decoder.GetVideoInfosDurationLow(video));
    table.setText(row, FileCol::VideoLanguage, decoder.GetVideoInfosLanguage(video));
    table.setLong(row, FileCol::AudioStreamCount, decoder.AudioStreamCount());
    table.setText(row, FileCol::AudioCodecName,
                  Strip_Brackets(Trim_Spaces(decoder.GetAudioInfosCodecName(audio))));
    table.setLong(row, FileCol::AudioBitRate, decoder.GetAudioInfosBitRate(audio));
    table.setLong(row, FileCol::AudioSampleRate, decoder.GetAudioInfosSampleRate(audio));
    table.setLong(row, FileCol::AudioChannels, decoder.GetAudioInfosChannels(audio));
    table.setLong(row, FileCol::AudioDurationLow, decoder.GetAudioInfosDurationLow(audio));
    table.setText(row, FileCol::AudioLanguage, decoder.GetAudioInfosLanguage(audio));
    table.setText(row, FileCol::FileTitle, decoder.GetFileInfoTitle());
    table.setText(row, FileCol::FileComment, decoder.GetFileInfoComment());
    table.setText(row, FileCol::FileAuthor, decoder.GetFileInfoAuthor());
    table.setText(row, FileCol::FileAlbum, decoder.GetFileInfoAlbum());
    table.setLong(row, FileCol::FileYear, decoder.GetFileInfoYear());
    table.setLong(row, FileCol::FileTrack, decoder.GetFileInfoTrack());
    table.setText(row, FileCol::FileGenre, decoder.GetFileInfoGenre());
    table.setText(row, FileCol::FileCopyright, decoder.GetFileInfoCopyright());
    table.setTimePair(row, FileCol::TrimStartLow, FileCol::TrimStartHigh, 0);
    table.setTimePair(row, FileCol::TrimEndLow, FileCol::TrimEndHigh, duration);
    for (int column = FileCol::CropTop; column <= FileCol::PadColor; ++column)
        table.setText(row, column, QStringLiteral("0"));
    table.setLong(row, FileCol::CropWidth, width);
    table.setLong(row, FileCol::CropHeight, height);
    table.setText(row, FileCol::Filters, QString());
    table.setText(row, FileCol::Deinterlacing, QStringLiteral("1"));
    table.setText(row, FileCol::ConvertedFileName, QString());
    table.setText(row, FileCol::FileExt, extension.toUpper());
    table.setText(row, FileCol::NewAspectRatio, QStringLiteral("Original"));
    table.setTimePair(row, FileCol::FileDurationLow, FileCol::FileDurationHigh, duration);
    table.setText(row, FileCol::Thumbnail, QString());
    table.setText(row, FileCol::ErrMsg, QString());

    if (Time_Low(duration) != -1 && Time_High(duration) != -1) {
        decoder.SetFrameDecoding(true);
        // The limit is the rounded length: 6.6 s seeks, 6.4 s stays at the start.
        if (Round_HalfEven(Time_ToSeconds(duration)) >= kThumbnailSecond) {
            std::int32_t low = kThumbnailSecond * 1000000;
            std::int32_t high = 0;
            decoder.SeekTo(low, high, 0);
        }
        if (decoder.ReadNextFrame(-1)) table.setText(row, FileCol::Thumbnail, saveThumbnail(decoder));
    }
}

Outcome probe(const QString& path, int mode, FileViewMain& table, FFDecoder& decoder, bool& opened) {
    if (!decoder.OpenFile(path, QString())) return Outcome::Failed;
    opened = true;

    std::int64_t duration = 0;
    const std::int32_t durationLow = decoder.GetFileInfoDurationLow();
    if (!(decoder.GetFileInfoDurationLow() == 0 && decoder.GetFileInfoDurationHigh() == kNoValueHigh))
        duration = Time_FromPair(durationLow, decoder.GetFileInfoDurationHigh());

    if (mode == kFillMode_Disc && Trim_Spaces(Format_TimeCode(duration).left(8)) == QLatin1String("00:00:00"))
        return Outcome::Quiet;

    const int video = decoder.FirstVideoStreamIndex();
    const int audio = decoder.FirstAudioStreamIndex();
    const int subtitle = decoder.FirstSubtitleStreamIndex();

    // The whole definition of a supported file: a video codec text, and a known frame rate.
    if (Strip_Brackets(Trim_Spaces(decoder.GetVideoInfosCodecName(video))).isEmpty()) return Outcome::Failed;
    if (decoder.IsVideoStream(video) && decoder.GetVideoInfosFrameRateNumerator(video) == 0)
        return Outcome::Failed;

    fillRow(path, table, decoder, duration, durationLow, video, audio, subtitle);
    decoder.CloseFile();
    return Outcome::Added;
}

} // namespace

QString Strip_Brackets(const QString& text) {
    const qsizetype open = text.indexOf(QLatin1Char('('), 0, Qt::CaseInsensitive);
    if (open < 0) return text;
    QString inner = Trim_Spaces(text.mid(open));
    if (inner.startsWith(QLatin1Char('('))) inner.remove(0, 1);
    if (inner.endsWith(QLatin1Char(')'))) inner.chop(1);
    return inner;
}

void Fill_Item(const QString& path, int mode, FileViewMain& table, FFDecoder& decoder) {
    bool opened = false;
    Outcome outcome = Outcome::Failed;
    QString description;
    try {
        outcome = probe(path, mode, table, decoder, opened);
    } catch (const std::exception& error) {
        outcome = Outcome::Failed;
        description = QString::fromUtf8(error.what());
    }

    if (outcome == Outcome::Failed) {
        const QString decoderText = Trim_Spaces(decoder.LastErrorMessage());
        Report_Add(File_ReportName(path), decoderText.isEmpty() ? description : decoderText);
    }
    if (outcome != Outcome::Added && opened) decoder.CloseFile();

    table.populate();
    Yield_Events();
    Set_RowState(table, table.rows() - 1, true, State_Ready);
}

} // namespace morvane
