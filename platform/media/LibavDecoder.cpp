#include "LibavDecoder.h"

#include <QFile>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <climits>
#include <filesystem>
#include <limits>

namespace morvane {

namespace {

// One library call (open, seek, one frame) may take this long before the read is cut off; it turns a
// stalled or endlessly looping input into an error instead of a hang.
constexpr auto kCallLimit = std::chrono::seconds(20);
// Packets read for one frame before giving up: bounded work on streams that never yield a picture.
constexpr int kPacketLimit = 1 << 15;
// Undecodable packets tolerated in a row before the stream counts as broken.
constexpr int kBadPacketLimit = 64;

constexpr std::int64_t kNoValue = std::numeric_limits<std::int64_t>::min();

std::int32_t lowWord(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

std::int32_t highWord(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value) >> 32));
}

std::int32_t clampToInt32(std::int64_t value) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(), INT32_MAX));
}

QString errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

QString codecText(AVCodecID id) {
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(id);
    if (!descriptor || id == AV_CODEC_ID_NONE) return {};
    const QString name = QString::fromUtf8(descriptor->name);
    if (!descriptor->long_name || !*descriptor->long_name) return name;
    return name + QStringLiteral(" (") + QString::fromUtf8(descriptor->long_name) + QLatin1Char(')');
}

// The leading whole number of a tag such as "2024-05-01" or "3/12"; 0 without one.
std::int32_t leadingNumber(const QString& text) {
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    while (end < trimmed.size() && end < 9 && trimmed.at(end).isDigit())
        ++end;
    return end == 0 ? 0 : trimmed.left(end).toInt();
}

std::int64_t streamDuration(const AVStream* stream) {
    if (stream->duration == AV_NOPTS_VALUE || stream->duration < 0) return 0;
    return av_rescale_q(stream->duration, stream->time_base, AV_TIME_BASE_Q);
}

} // namespace

LibavDecoder::LibavDecoder() = default;
LibavDecoder::~LibavDecoder() = default;

bool LibavDecoder::fail(int code) {
    m_error = errorText(code);
    return false;
}

void LibavDecoder::startDeadline() {
    m_deadline = std::chrono::steady_clock::now() + kCallLimit;
}

int LibavDecoder::interrupted(void* self) {
    return std::chrono::steady_clock::now() > static_cast<LibavDecoder*>(self)->m_deadline ? 1 : 0;
}

bool LibavDecoder::OpenFile(const QString& path, const QString& /*options*/) {
    CloseFile();
    m_error.clear();
    if (path.isEmpty()) return fail(AVERROR(ENOENT));

    // A FIFO or device would block the open itself, before any interrupt check could run.
    const std::filesystem::path native(QFile::encodeName(path).toStdString());
    std::error_code ignored;
    const auto status = std::filesystem::status(native, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
        !std::filesystem::is_directory(status))
        return fail(AVERROR(EINVAL));

    AVFormatContext* raw = avformat_alloc_context();
    if (!raw) return fail(AVERROR(ENOMEM));
    raw->interrupt_callback = {&LibavDecoder::interrupted, this};
    startDeadline();
    // The file: prefix keeps a colon in a relative name from being read as a protocol.
    const QByteArray url = QByteArrayLiteral("file:") + QFile::encodeName(path);
    int result = avformat_open_input(&raw, url.constData(), nullptr, nullptr);
    if (result < 0) return fail(result); // the library has freed the context
    FormatContextPtr format(raw);
    result = avformat_find_stream_info(format.get(), nullptr);
    if (result < 0) return fail(result);

    m_fileSize = format->pb ? avio_size(format->pb) : 0;
    if (m_fileSize < 0) m_fileSize = 0;
    m_format = std::move(format);
    return true;
}

void LibavDecoder::CloseFile() {
    m_scaler.reset();
    m_pending.reset();
    m_shown.reset();
    m_frame.reset();
    m_packet.reset();
    m_codec.reset();
    m_format.reset();
    m_decodedStream = -1;
    m_draining = false;
    m_fileSize = 0;
}

std::int32_t LibavDecoder::GetFileInfoDurationLow() const {
    if (!m_format) return 0;
    return lowWord(m_format->duration == AV_NOPTS_VALUE ? kNoValue : m_format->duration);
}

std::int32_t LibavDecoder::GetFileInfoDurationHigh() const {
    if (!m_format) return 0;
    return highWord(m_format->duration == AV_NOPTS_VALUE ? kNoValue : m_format->duration);
}

std::int32_t LibavDecoder::FileSizeLow() const {
    return m_format ? lowWord(m_fileSize) : 0;
}

QString LibavDecoder::tag(const char* key) const {
    if (!m_format) return {};
    const AVDictionaryEntry* entry = av_dict_get(m_format->metadata, key, nullptr, 0);
    return entry && entry->value ? QString::fromUtf8(entry->value) : QString();
}

QString LibavDecoder::GetFileInfoTitle() const {
    return tag("title");
}
QString LibavDecoder::GetFileInfoComment() const {
    return tag("comment");
}
QString LibavDecoder::GetFileInfoAlbum() const {
    return tag("album");
}
QString LibavDecoder::GetFileInfoGenre() const {
    return tag("genre");
}
QString LibavDecoder::GetFileInfoCopyright() const {
    return tag("copyright");
}

QString LibavDecoder::GetFileInfoAuthor() const {
    const QString artist = tag("artist");
    return artist.isEmpty() ? tag("author") : artist;
}

std::int32_t LibavDecoder::GetFileInfoYear() const {
    const QString date = tag("date");
    return leadingNumber(date.isEmpty() ? tag("year") : date);
}

std::int32_t LibavDecoder::GetFileInfoTrack() const {
    return leadingNumber(tag("track"));
}

int LibavDecoder::firstOf(AVMediaType kind) const {
    if (!m_format) return -1;
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        if (m_format->streams[i]->codecpar->codec_type == kind) return static_cast<int>(i);
    return -1;
}

bool LibavDecoder::isKind(int stream, AVMediaType kind) const {
    return m_format && stream >= 0 && static_cast<unsigned>(stream) < m_format->nb_streams &&
           m_format->streams[stream]->codecpar->codec_type == kind;
}

int LibavDecoder::countOf(AVMediaType kind) const {
    if (!m_format) return 0;
    int count = 0;
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        if (m_format->streams[i]->codecpar->codec_type == kind) ++count;
    return count;
}

const AVStream* LibavDecoder::streamOf(int stream, AVMediaType kind) const {
    if (!m_format) return nullptr;
    if (!isKind(stream, kind)) {
        m_error = errorText(AVERROR_STREAM_NOT_FOUND);
        return nullptr;
    }
    return m_format->streams[stream];
}

AVRational LibavDecoder::displayAspect(const AVStream* stream) const {
    const AVCodecParameters* par = stream->codecpar;
    if (par->width <= 0 || par->height <= 0) return {0, 1};
    AVRational sar = av_guess_sample_aspect_ratio(m_format.get(), const_cast<AVStream*>(stream), nullptr);
    if (sar.num <= 0 || sar.den <= 0) sar = {1, 1};
    AVRational dar{0, 1};
    av_reduce(&dar.num, &dar.den, static_cast<std::int64_t>(par->width) * sar.num,
              static_cast<std::int64_t>(par->height) * sar.den, INT_MAX);
    return dar;
}

QString LibavDecoder::GetVideoInfosCodecName(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? codecText(s->codecpar->codec_id) : QString();
}

std::int32_t LibavDecoder::GetVideoInfosWidth(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? s->codecpar->width : 0;
}

std::int32_t LibavDecoder::GetVideoInfosHeight(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? s->codecpar->height : 0;
}

std::int32_t LibavDecoder::GetVideoInfosBitRate(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? clampToInt32(s->codecpar->bit_rate) : 0;
}

namespace {

AVRational frameRate(const AVStream* stream) {
    if (stream->avg_frame_rate.num > 0 && stream->avg_frame_rate.den > 0) return stream->avg_frame_rate;
    if (stream->r_frame_rate.num > 0 && stream->r_frame_rate.den > 0) return stream->r_frame_rate;
    return {0, 1};
}

} // namespace

std::int32_t LibavDecoder::GetVideoInfosFrameRateNumerator(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? frameRate(s).num : 0;
}

std::int32_t LibavDecoder::GetVideoInfosFrameRateDenominator(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? frameRate(s).den : 0;
}

std::int32_t LibavDecoder::GetVideoInfosDARNumerator(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? displayAspect(s).num : 0;
}

std::int32_t LibavDecoder::GetVideoInfosDARDenominator(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? displayAspect(s).den : 0;
}

float LibavDecoder::GetVideoInfosDisplayAspectRatio(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? static_cast<float>(av_q2d(displayAspect(s))) : 0.0f;
}

std::int32_t LibavDecoder::GetVideoInfosDurationLow(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    return s ? lowWord(streamDuration(s)) : 0;
}

QString LibavDecoder::GetVideoInfosLanguage(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_VIDEO);
    if (!s) return {};
    const AVDictionaryEntry* entry = av_dict_get(s->metadata, "language", nullptr, 0);
    return entry ? QString::fromUtf8(entry->value) : QString();
}

QString LibavDecoder::GetAudioInfosCodecName(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    return s ? codecText(s->codecpar->codec_id) : QString();
}

std::int32_t LibavDecoder::GetAudioInfosBitRate(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    return s ? clampToInt32(s->codecpar->bit_rate) : 0;
}

std::int32_t LibavDecoder::GetAudioInfosSampleRate(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    return s ? s->codecpar->sample_rate : 0;
}

std::int32_t LibavDecoder::GetAudioInfosChannels(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    return s ? s->codecpar->ch_layout.nb_channels : 0;
}

std::int32_t LibavDecoder::GetAudioInfosDurationLow(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    return s ? lowWord(streamDuration(s)) : 0;
}

QString LibavDecoder::GetAudioInfosLanguage(int stream) const {
    const AVStream* s = streamOf(stream, AVMEDIA_TYPE_AUDIO);
    if (!s) return {};
    const AVDictionaryEntry* entry = av_dict_get(s->metadata, "language", nullptr, 0);
    return entry ? QString::fromUtf8(entry->value) : QString();
}

void LibavDecoder::SetFrameDecoding(bool on) {
    m_frameDecoding = on;
}

bool LibavDecoder::prepareDecoder(int stream) {
    if (!m_format) return fail(AVERROR(EINVAL));
    if (!m_frameDecoding) return fail(AVERROR(EINVAL));
    if (stream == -1) stream = FirstVideoStreamIndex();
    if (!isKind(stream, AVMEDIA_TYPE_VIDEO)) return fail(AVERROR_STREAM_NOT_FOUND);
    if (m_codec && m_decodedStream == stream) return true;

    m_codec.reset();
    m_pending.reset();
    m_shown.reset();
    m_draining = false;
    const AVCodecParameters* par = m_format->streams[stream]->codecpar;
    const AVCodec* decoder = avcodec_find_decoder(par->codec_id);
    if (!decoder) return fail(AVERROR_DECODER_NOT_FOUND);
    CodecContextPtr codec(avcodec_alloc_context3(decoder));
    if (!codec) return fail(AVERROR(ENOMEM));
    int result = avcodec_parameters_to_context(codec.get(), par);
    if (result < 0) return fail(result);
    codec->pkt_timebase = m_format->streams[stream]->time_base;
    // Frame threads would only add latency before the first picture, and a probe decodes few.
    codec->thread_type = FF_THREAD_SLICE;
    result = avcodec_open2(codec.get(), decoder, nullptr);
    if (result < 0) return fail(result);

    if (!m_frame) m_frame.reset(av_frame_alloc());
    if (!m_packet) m_packet.reset(av_packet_alloc());
    if (!m_frame || !m_packet) return fail(AVERROR(ENOMEM));
    m_codec = std::move(codec);
    m_decodedStream = stream;
    return true;
}

LibavDecoder::Step LibavDecoder::decodeStep() {
    int badPackets = 0;
    for (int packets = 0; packets < kPacketLimit; ++packets) {
        int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result >= 0) return Step::Frame;
        if (result == AVERROR_EOF) {
            fail(result);
            return Step::End;
        }
        if (result != AVERROR(EAGAIN)) {
            fail(result);
            return Step::Failed;
        }
        if (m_draining) { // a decoder that asks for more after the flush packet has nothing left
            fail(AVERROR_EOF);
            return Step::End;
        }

        result = av_read_frame(m_format.get(), m_packet.get());
        if (result < 0) {
            // End of input, or a read that broke off: either way flush the frames the decoder holds.
            m_draining = true;
            avcodec_send_packet(m_codec.get(), nullptr);
            continue;
        }
        if (m_packet->stream_index != m_decodedStream) {
            av_packet_unref(m_packet.get());
            continue;
        }
        result = avcodec_send_packet(m_codec.get(), m_packet.get());
        av_packet_unref(m_packet.get());
        if (result < 0 && result != AVERROR(EAGAIN)) {
            // A damaged packet spoils one picture; the next key frame may still decode.
            if (++badPackets > kBadPacketLimit) {
                fail(result);
                return Step::Failed;
            }
        } else {
            badPackets = 0;
        }
    }
    fail(AVERROR_INVALIDDATA);
    return Step::Failed;
}

bool LibavDecoder::SeekTo(std::int32_t& positionLow, std::int32_t& positionHigh, int /*flags*/) {
    startDeadline();
    if (!prepareDecoder(-1)) return false;
    const std::int64_t position = static_cast<std::int64_t>(
        (static_cast<std::uint64_t>(static_cast<std::uint32_t>(positionHigh)) << 32) |
        static_cast<std::uint32_t>(positionLow));
    // Far beyond any real file; refused so that adding the start time cannot overflow.
    if (position < 0 || position > std::numeric_limits<std::int64_t>::max() / 4) return fail(AVERROR(EINVAL));

    const AVStream* stream = m_format->streams[m_decodedStream];
    const std::int64_t start = m_format->start_time == AV_NOPTS_VALUE ? 0 : m_format->start_time;
    const std::int64_t target = av_rescale_q(position + start, AV_TIME_BASE_Q, stream->time_base);
    int result = avformat_seek_file(m_format.get(), m_decodedStream, INT64_MIN, target, target, 0);
    if (result < 0) {
        // Streams without an index (raw streams) may refuse; from the first byte the decoding
        // below still walks forward to the position.
        if (avformat_seek_file(m_format.get(), -1, 0, 0, 0, AVSEEK_FLAG_BYTE) < 0) return fail(result);
    }
    avcodec_flush_buffers(m_codec.get());
    m_draining = false;
    m_pending.reset();

    // Decode forward from the key frame; keep the newest frame so that a seek past the end still
    // lands on the last picture.
    FramePtr best;
    for (;;) {
        const Step step = decodeStep();
        if (step != Step::Frame) {
            if (!best) return false;
            break;
        }
        if (!best) best.reset(av_frame_alloc());
        if (!best) return fail(AVERROR(ENOMEM));
        av_frame_unref(best.get());
        av_frame_move_ref(best.get(), m_frame.get());
        if (best->best_effort_timestamp == AV_NOPTS_VALUE || best->best_effort_timestamp >= target) break;
    }

    if (best->best_effort_timestamp != AV_NOPTS_VALUE) {
        const std::int64_t reached = std::max<std::int64_t>(
            0, av_rescale_q(best->best_effort_timestamp, stream->time_base, AV_TIME_BASE_Q) - start);
        positionLow = lowWord(reached);
        positionHigh = highWord(reached);
    }
    m_pending = std::move(best);
    m_error.clear();
    return true;
}

bool LibavDecoder::ReadNextFrame(int stream) {
    startDeadline();
    if (!prepareDecoder(stream)) return false;
    if (m_pending) {
        m_shown = std::move(m_pending);
        return true;
    }
    if (decodeStep() != Step::Frame) return false;
    if (!m_shown) m_shown.reset(av_frame_alloc());
    if (!m_shown) return fail(AVERROR(ENOMEM));
    av_frame_unref(m_shown.get());
    av_frame_move_ref(m_shown.get(), m_frame.get());
    return true;
}

bool LibavDecoder::DrawFrame(std::uint8_t* bgra, int width, int height, int bytesPerLine, bool fit) {
    if (!bgra || width <= 0 || height <= 0 || width > INT_MAX / 4 || bytesPerLine < width * 4)
        return fail(AVERROR(EINVAL));
    if (!m_shown || m_shown->width <= 0 || m_shown->height <= 0) return fail(AVERROR(EINVAL));

    int x = 0;
    int y = 0;
    int w = width;
    int h = height;
    if (fit) {
        AVRational sar = m_shown->sample_aspect_ratio;
        if (sar.num <= 0 || sar.den <= 0) sar = {1, 1};
        const double aspect = static_cast<double>(m_shown->width) * sar.num / (m_shown->height * sar.den);
        if (static_cast<double>(width) / height > aspect)
            w = std::clamp(static_cast<int>(std::lround(height * aspect)), 1, width);
        else
            h = std::clamp(static_cast<int>(std::lround(width / aspect)), 1, height);
        x = (width - w) / 2;
        y = (height - h) / 2;
    }

    SwsContext* scaler = sws_getCachedContext(m_scaler.release(), m_shown->width, m_shown->height,
                                              static_cast<AVPixelFormat>(m_shown->format), w, h,
                                              AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr, nullptr);
    m_scaler.reset(scaler);
    if (!scaler) return fail(AVERROR(EINVAL));

    // Black, opaque, around the picture; bytes past each row's pixels belong to the caller.
    for (int row = 0; row < height; ++row) {
        std::uint8_t* line = bgra + static_cast<std::ptrdiff_t>(row) * bytesPerLine;
        for (int column = 0; column < width; ++column, line += 4) {
            line[0] = line[1] = line[2] = 0;
            line[3] = 255;
        }
    }

    std::uint8_t* target[4] = {bgra + static_cast<std::ptrdiff_t>(y) * bytesPerLine + x * 4, nullptr, nullptr,
                               nullptr};
    const int strides[4] = {bytesPerLine, 0, 0, 0};
    const int rows = sws_scale(scaler, m_shown->data, m_shown->linesize, 0, m_shown->height, target, strides);
    if (rows <= 0) return fail(rows < 0 ? rows : AVERROR(EINVAL));
    m_error.clear();
    return true;
}

std::unique_ptr<FFDecoder> Make_FFDecoder() {
    return std::make_unique<LibavDecoder>();
}

} // namespace morvane
