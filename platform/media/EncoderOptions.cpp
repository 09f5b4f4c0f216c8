#include "EncoderOptions.h"

extern "C" {
#include <libavutil/parseutils.h>
#include <libavutil/pixdesc.h>
}

#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

namespace morvane {
namespace {

struct Token {
    std::string text;
    bool quoted = false;
};

// Splits at blanks; a double-quoted stretch is one token, blanks and all.
bool tokenize(std::string_view text, std::vector<Token>& out, std::string& error) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] == ' ' || text[i] == '\t') {
            ++i;
            continue;
        }
        Token t;
        while (i < text.size() && text[i] != ' ' && text[i] != '\t') {
            if (text[i] == '"') {
                const std::size_t close = text.find('"', i + 1);
                if (close == std::string_view::npos) {
                    error = "Unterminated quote in the argument text";
                    return false;
                }
                t.text.append(text.substr(i + 1, close - i - 1));
                t.quoted = true;
                i = close + 1;
            } else {
                t.text.push_back(text[i++]);
            }
        }
        out.push_back(std::move(t));
    }
    return true;
}

bool isOptionName(const Token& t) {
    if (t.quoted || t.text.size() < 2 || t.text[0] != '-') return false;
    const char c = t.text[1];
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::optional<std::int64_t> parseBitrate(const std::string& s) {
    if (s.empty()) return std::nullopt;
    char* end = nullptr;
    const double v = std::strtod(s.c_str(), &end);
    double scale = 1;
    std::string_view rest(end);
    if (rest == "k" || rest == "K")
        scale = 1e3;
    else if (rest == "M")
        scale = 1e6;
    else if (!rest.empty())
        return std::nullopt;
    if (end == s.c_str() || !(v > 0) || v * scale > 1e10) return std::nullopt;
    return static_cast<std::int64_t>(std::llround(v * scale));
}

std::optional<int> parsePositiveInt(const std::string& s, int max) {
    if (s.empty()) return std::nullopt;
    char* end = nullptr;
    const long v = std::strtol(s.c_str(), &end, 10);
    if (*end != '\0' || v <= 0 || v > max) return std::nullopt;
    return static_cast<int>(v);
}

std::optional<std::int64_t> parseTime(const std::string& s) {
    std::int64_t us = 0;
    if (s.empty() || av_parse_time(&us, s.c_str(), 1) < 0 || us < 0) return std::nullopt;
    return us;
}

std::optional<Rational> parseRate(const std::string& s) {
    AVRational r{0, 0};
    if (s.empty() || av_parse_video_rate(&r, s.c_str()) < 0 || r.num <= 0 || r.den <= 0) return std::nullopt;
    return Rational{r.num, r.den};
}

std::optional<Rational> parseAspect(const std::string& s) {
    AVRational r{0, 0};
    if (s.empty() || av_parse_ratio(&r, s.c_str(), 255, 0, nullptr) < 0 || r.num <= 0 || r.den <= 0)
        return std::nullopt;
    return Rational{r.num, r.den};
}

std::optional<std::uint32_t> parseTag(const std::string& s) {
    if (s.size() != 4) return std::nullopt;
    return static_cast<std::uint32_t>(static_cast<unsigned char>(s[0])) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(s[1])) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(s[2])) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(s[3])) << 24;
}

std::string badValue(const std::string& value, const std::string& option) {
    return "Invalid value '" + value + "' for option '" + option + "'";
}

} // namespace

bool Parse_EncoderOptions(std::string_view text, EncoderOptions& out, std::string& error) {
    out = EncoderOptions{};
    std::vector<Token> tokens;
    if (!tokenize(text, tokens, error)) return false;

    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& tok = tokens[i];
        if (!isOptionName(tok)) {
            error = "Unexpected argument '" + tok.text + "'";
            return false;
        }
        const std::string& name = tok.text;

        if (name == "-VideoOutputHook")
            out.videoHook = true;
        else if (name == "-an")
            out.noAudio = true;
        else if (name == "-vn")
            out.noVideo = true;
        else if (name == "-deinterlace")
            out.deinterlace = true;
        else if (name == "-aspect") {
            // The builder writes "-aspect" with an empty value when it knows no ratio: the
            // source's aspect is then kept.
            if (i + 1 < tokens.size() && !isOptionName(tokens[i + 1])) {
                const std::string& v = tokens[++i].text;
                const auto r = parseAspect(v);
                if (!r) {
                    error = badValue(v, name);
                    return false;
                }
                out.aspect = *r;
            }
        } else {
            static const char* const valued[] = {"-ac",     "-ar",      "-ab",   "-acodec", "-r", "-vb",
                                                 "-vcodec", "-pix_fmt", "-vtag", "-target", "-t", "-vf"};
            // Only the encoder options the builder writes: the dialect stays closed, so that a thread
            // count or the like cannot slip into a preset.
            static const char* const encoderPrivate[] = {"-preset", "-row-mt", "-deadline", "-cpu-used"};
            bool known = false, isPrivate = false;
            for (const char* v : valued)
                known = known || name == v;
            for (const char* v : encoderPrivate)
                isPrivate = isPrivate || name == v;
            known = known || isPrivate;
            if (!known) {
                error = "Unrecognized option '" + name.substr(1) + "'";
                return false;
            }
            if (i + 1 >= tokens.size() || isOptionName(tokens[i + 1])) {
                error = "Missing argument for option '" + name.substr(1) + "'";
                return false;
            }
            const std::string& v = tokens[++i].text;
            bool ok = true;
            if (isPrivate) {
                // The value is the encoder's to judge, when it opens.
                ok = !v.empty();
                out.codecOptions.emplace_back(name.substr(1), v);
            } else if (name == "-ac") {
                const auto n = parsePositiveInt(v, 64);
                ok = n.has_value();
                if (ok) out.channels = *n;
            } else if (name == "-ar") {
                const auto n = parsePositiveInt(v, 768000);
                ok = n.has_value();
                if (ok) out.sampleRate = *n;
            } else if (name == "-ab" || name == "-vb") {
                const auto b = parseBitrate(v);
                ok = b.has_value();
                if (ok) (name == "-ab" ? out.audioBitrate : out.videoBitrate) = *b;
            } else if (name == "-acodec" || name == "-vcodec") {
                ok = !v.empty();
                (name == "-acodec" ? out.audioCodec : out.videoCodec) = v;
            } else if (name == "-r") {
                const auto r = parseRate(v);
                ok = r.has_value();
                if (ok) out.frameRate = *r;
            } else if (name == "-pix_fmt") {
                ok = av_get_pix_fmt(v.c_str()) != AV_PIX_FMT_NONE;
                out.pixelFormat = v;
            } else if (name == "-vtag") {
                const auto t = parseTag(v);
                ok = t.has_value();
                if (ok) out.videoTag = *t;
            } else if (name == "-target") {
                if (v == "ntsc-dv")
                    out.target = DvTarget::Ntsc;
                else if (v == "pal-dv")
                    out.target = DvTarget::Pal;
                else
                    ok = false;
            } else if (name == "-t") {
                const auto t = parseTime(v);
                ok = t.has_value() && *t > 0;
                if (ok) out.durationUs = *t;
            } else if (name == "-vf") {
                ok = v.find_first_not_of(' ') != std::string::npos;
                out.videoFilters = v;
            }
            if (!ok) {
                error = badValue(v, name);
                return false;
            }
        }
    }
    if (out.noAudio && out.noVideo) {
        error = "Output has neither audio nor video (-an and -vn)";
        return false;
    }
    return true;
}

bool Parse_InputOptions(std::string_view text, InputOptions& out, std::string& error) {
    out = InputOptions{};
    std::vector<Token> tokens;
    if (!tokenize(text, tokens, error)) return false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].text != "-ss" || tokens[i].quoted) {
            error = isOptionName(tokens[i]) ? "Unrecognized input option '" + tokens[i].text.substr(1) + "'"
                                            : "Unexpected argument '" + tokens[i].text + "'";
            return false;
        }
        if (i + 1 >= tokens.size()) {
            error = "Missing argument for option 'ss'";
            return false;
        }
        const auto t = parseTime(tokens[++i].text);
        if (!t) {
            error = badValue(tokens[i].text, "-ss");
            return false;
        }
        out.seekUs = *t;
    }
    return true;
}

DvSettings Dv_Settings(DvTarget target) {
    if (target == DvTarget::Pal) return {720, 576, "yuv420p", {25, 1}, 48000, 2};
    return {720, 480, "yuv411p", {30000, 1001}, 48000, 2};
}

} // namespace morvane
