#include "Effects_Area.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <numbers>
#include <vector>

namespace morvane::imaging {

namespace {

// How much wider this frame is than the reference: sizes given in reference pixels grow by this.
double Scale(const Frame& f) {
    return static_cast<double>(f.width) / kReferenceWidth;
}

// A Gaussian blur of `sigma` pixels from `src` into `dst` (which may be `src`). OpenCV's Gaussian
// costs more the wider it is, so wide ones go down a Gaussian pyramid (each level halves the size and
// adds a variance of one pixel of the level above), blur the small picture by what remains, and come
// back up in one linear enlargement (which adds about a sixth of a level pixel squared).
void GaussianLike(const cv::Mat& src, cv::Mat& dst, double sigma) {
    double level = 1.0, variance = 0.0; // a level's pixel size, and the variance of getting there
    const auto remaining = [&](double levelSize, double made) {
        return (sigma * sigma - made - levelSize * levelSize / 6.0) / (levelSize * levelSize);
    };
    int levels = 0;
    // Down while the blur left to do at the next level stays at least a pixel there.
    while (remaining(2 * level, variance + level * level) >= 1.0 && (src.cols >> levels) >= 8 &&
           (src.rows >> levels) >= 8) {
        variance += level * level;
        level *= 2;
        ++levels;
    }
    if (levels == 0) {
        cv::GaussianBlur(src, dst, cv::Size(), sigma, sigma);
        return;
    }
    thread_local cv::Mat pyramid[2];
    for (int i = 0; i < levels; ++i)
        cv::pyrDown(i == 0 ? src : pyramid[(i + 1) % 2], pyramid[i % 2]);
    cv::Mat& small = pyramid[(levels - 1) % 2];
    const double rest = std::sqrt(remaining(level, variance));
    cv::GaussianBlur(small, small, cv::Size(), rest, rest);
    cv::resize(small, dst, src.size(), 0, 0, cv::INTER_LINEAR);
}

// The grey picture into the three colour channels; the fourth byte keeps its value.
void PutGrey(const cv::Mat& grey, cv::Mat& frame) {
    const int fromTo[] = {0, 0, 0, 1, 0, 2};
    cv::mixChannels(&grey, 1, &frame, 1, fromTo, 3);
}

// The first three channels of `colour` into the frame's; the fourth byte keeps its value.
void PutColour(const cv::Mat& colour, cv::Mat& frame) {
    const int fromTo[] = {0, 0, 1, 1, 2, 2};
    cv::mixChannels(&colour, 1, &frame, 1, fromTo, 3);
}

// Each colour byte moves towards its blurred value, fully when the two are close and not at all when
// they are `reach` or more apart: flat and finely textured areas soften, edges stay. OpenCV has no
// two-input lookup, so one pass through a table of every (pixel, blurred) pair does it.
void MixKeepingEdges(cv::Mat& m, const cv::Mat& blurred, int reach) {
    thread_local std::vector<std::uint8_t> table(256 * 256);
    thread_local int tableReach = -1;
    if (tableReach != reach) {
        for (int s = 0; s < 256; ++s)
            for (int b = 0; b < 256; ++b) {
                const double d = b - s, t = d / reach;
                const double weight = std::abs(d) < reach ? (1 - t * t) * (1 - t * t) : 0.0;
                table[static_cast<std::size_t>(s * 256 + b)] =
                    Sat8(static_cast<int>(std::lround(s + d * weight)));
            }
        tableReach = reach;
    }
    const std::uint8_t* lut = table.data();
    for (int y = 0; y < m.rows; ++y) {
        std::uint8_t* p = m.ptr<std::uint8_t>(y);
        const std::uint8_t* q = blurred.ptr<std::uint8_t>(y);
        for (int i = 0; i < m.cols * 4; i += 4) {
            p[i] = lut[p[i] << 8 | q[i]];
            p[i + 1] = lut[p[i + 1] << 8 | q[i + 1]];
            p[i + 2] = lut[p[i + 2] << 8 | q[i + 2]];
        }
    }
}

// Light from the top left: brightness `d` pixels towards the bottom right minus brightness towards
// the top left, three taps each side. Zero where flat; a step of height H gives 3H.
void EmbossResponse(const cv::Mat& grey, cv::Mat& response, int d) {
    cv::Mat kernel = cv::Mat::zeros(2 * d + 1, 2 * d + 1, CV_32F);
    kernel.at<float>(0, 0) = kernel.at<float>(0, d) = kernel.at<float>(d, 0) = -1.0f;
    kernel.at<float>(2 * d, 2 * d) = kernel.at<float>(2 * d, d) = kernel.at<float>(d, 2 * d) = 1.0f;
    cv::filter2D(grey, response, CV_16S, kernel, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
}

// The picture's own relief: EmbossResponse of its brightness, smoothed as wide as the taps lie apart.
void PictureRelief(const Frame& f, const cv::Mat& m, cv::Mat& response) {
    thread_local cv::Mat grey;
    const int d = ScalePx(f, 1);
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    if (d > 1) cv::blur(grey, grey, cv::Size(d, d));
    EmbossResponse(grey, response, d);
}

// Smooth noise (0..255) with features about `feature` pixels across: random values on a coarse grid,
// enlarged. Kept per thread, since the same frame size asks for the same texture on every frame.
cv::Mat Texture(cv::Size size, double feature, std::uint32_t seed) {
    struct Entry {
        cv::Size size;
        double feature;
        std::uint32_t seed;
        cv::Mat texture;
    };
    thread_local std::vector<Entry> cache;
    for (const Entry& e : cache)
        if (e.size == size && e.feature == feature && e.seed == seed) return e.texture;
    if (cache.size() >= 4) cache.erase(cache.begin());
    cv::Mat grid(std::max(2, static_cast<int>(size.height / feature) + 1),
                 std::max(2, static_cast<int>(size.width / feature) + 1), CV_8U);
    Random random(seed);
    for (int y = 0; y < grid.rows; ++y)
        for (int x = 0; x < grid.cols; ++x)
            grid.at<std::uint8_t>(y, x) = static_cast<std::uint8_t>(random.Next() >> 24);
    Entry e{size, feature, seed, cv::Mat()};
    cv::resize(grid, e.texture, size, 0, 0, cv::INTER_CUBIC);
    cache.push_back(e);
    return e.texture;
}

// Every pixel replaced by one up to `radius` pixels away in each direction, chosen at random.
void Scatter(cv::Mat& m, int radius, std::uint32_t seed) {
    // The map holds 16-bit coordinates.
    if (m.cols > 32767 || m.rows > 32767 || radius < 1) return;
    thread_local cv::Mat map, source;
    map.create(m.size(), CV_16SC2);
    // The project's generator rather than OpenCV's, so the result is the same with any OpenCV.
    Random random(seed);
    const std::uint32_t span = 2u * static_cast<std::uint32_t>(radius) + 1u;
    for (int y = 0; y < m.rows; ++y) {
        auto* p = map.ptr<std::int16_t>(y);
        for (int x = 0; x < m.cols; ++x) {
            const std::uint32_t r = random.Next();
            const int dx = static_cast<int>(((r & 0xFFFFu) * span) >> 16) - radius;
            const int dy = static_cast<int>(((r >> 16) * span) >> 16) - radius;
            p[2 * x] = static_cast<std::int16_t>(Clamp(x + dx, 0, m.cols - 1));
            p[2 * x + 1] = static_cast<std::int16_t>(Clamp(y + dy, 0, m.rows - 1));
        }
    }
    m.copyTo(source);
    cv::remap(source, m, map, cv::noArray(), cv::INTER_NEAREST, cv::BORDER_REPLICATE);
}

// Averages 2^k copies of the picture turned (spin, degrees) or enlarged (zoom, log of the largest
// scale) about the centre by evenly spaced amounts. Each pass averages the result so far with itself
// moved by half the previous step, so k warps make 2^k copies; k grows until the copies at the
// corners lie about two pixels apart.
void SpinOrZoom(cv::Mat& m, double spinDegrees, double zoomLog) {
    const double corner = 0.5 * std::hypot(m.cols, m.rows);
    const double reach = corner * (spinDegrees * std::numbers::pi / 180.0 + std::expm1(zoomLog));
    const int passes = Clamp(static_cast<int>(std::ceil(std::log2(std::max(reach, 2.0) / 2.0))), 1, 8);
    const cv::Point2f centre(0.5f * static_cast<float>(m.cols - 1), 0.5f * static_cast<float>(m.rows - 1));
    thread_local cv::Mat moved;
    for (int pass = 1; pass <= passes; ++pass) {
        const double part = std::ldexp(1.0, -pass);
        // The spin's first pass goes back by half the angle, so the copies lie either side of the picture.
        const double angle = pass == 1 ? -0.5 * spinDegrees : spinDegrees * part;
        const cv::Mat move = cv::getRotationMatrix2D(centre, angle, std::exp(zoomLog * part));
        cv::warpAffine(m, moved, move, m.size(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);
        cv::addWeighted(m, 0.5, moved, 0.5, 0.0, m);
    }
}

// Each blockWidth x blockHeight block of `area` (a whole number of them) replaced by its mean colour.
void AverageBlocks(cv::Mat area, int blockWidth, int blockHeight) {
    if (area.empty()) return;
    thread_local cv::Mat means;
    cv::resize(area, means, cv::Size(area.cols / blockWidth, area.rows / blockHeight), 0, 0, cv::INTER_AREA);
    cv::resize(means, area, area.size(), 0, 0, cv::INTER_NEAREST_EXACT);
}

// Strength 0..6 as the gain on edge contrast.
double EdgeGain(int strength) {
    return 0.5 + 0.5 * Clamp(strength, 0, 6);
}

// The picture with its finest grain taken off at large sizes, so that edges come out alike at any width.
void Presmooth(const Frame& f, const cv::Mat& src, cv::Mat& dst) {
    const double sigma = 0.5 * Scale(f);
    if (sigma >= 0.6)
        cv::GaussianBlur(src, dst, cv::Size(), sigma, sigma);
    else
        src.copyTo(dst);
}

// The brightness contrast at each pixel (|d/dx| + |d/dy|), scaled so that a step of H levels measures H.
void EdgeContrast(const Frame& f, const cv::Mat& m, cv::Mat& contrast) {
    thread_local cv::Mat grey, dx, dy;
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    Presmooth(f, grey, grey);
    cv::Sobel(grey, dx, CV_16S, 1, 0);
    cv::Sobel(grey, dy, CV_16S, 0, 1);
    cv::convertScaleAbs(dx, contrast, 0.25);
    cv::convertScaleAbs(dy, grey, 0.25);
    cv::add(contrast, grey, contrast);
}

} // namespace

void Blur(const Frame& f) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    GaussianLike(m, m, std::max(0.5, 1.0 * Scale(f)));
}

void SoftnerBlur(const Frame& f) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    GaussianLike(m, m, std::max(1.0, 2.0 * Scale(f)));
}

void SmartBlur(const Frame& f, int threshold) {
    if (!f.Valid()) return;
    threshold = Clamp(threshold, 0, 50);
    if (threshold == 0) return;
    cv::Mat m = MatOf(f);
    thread_local cv::Mat blurred;
    const int k = 2 * ScalePx(f, 2) + 1;
    cv::blur(m, blurred, cv::Size(k, k));
    MixKeepingEdges(m, blurred, 2 * threshold);
}

void AdvancedBlur(const Frame& f, int radius, std::int16_t gaussian, bool keepEdges) {
    if (!f.Valid()) return;
    radius = Clamp(radius, 0, 10);
    if (radius == 0) return;
    cv::Mat m = MatOf(f);
    const int r = ScalePx(f, radius);
    thread_local cv::Mat blurred;
    cv::Mat& out = keepEdges ? blurred : m;
    if (gaussian != 0)
        GaussianLike(m, out, 0.5 * r);
    else
        cv::blur(m, out, cv::Size(2 * r + 1, 2 * r + 1));
    if (keepEdges) MixKeepingEdges(m, blurred, 40);
}

void MotionBlur(const Frame& f, double angle, int distance) {
    if (!f.Valid()) return;
    distance = Clamp(distance, 1, 50);
    if (distance == 1) return;
    cv::Mat m = MatOf(f);
    const int length = ScalePx(f, distance) | 1; // odd, so the streak is centred on its pixel
    // A streak along a line is the same both ways: only the angle modulo 180 matters.
    double degrees = std::isfinite(angle) ? std::fmod(angle, 180.0) : 0.0;
    if (degrees < 0) degrees += 180.0;
    if (degrees == 0.0 || degrees == 90.0) {
        cv::blur(m, m, degrees == 0.0 ? cv::Size(length, 1) : cv::Size(1, length));
        return;
    }
    // Otherwise turn the picture so the streaks run across, blur along rows (the box filter costs the
    // same at any length), and turn it back. The canvas holds the turned picture whole.
    const double rad = degrees * std::numbers::pi / 180.0;
    const double c = std::abs(std::cos(rad)), s = std::abs(std::sin(rad));
    const cv::Size canvas(static_cast<int>(std::ceil(m.cols * c + m.rows * s)) + length + 2,
                          static_cast<int>(std::ceil(m.cols * s + m.rows * c)) + 2);
    const cv::Point2f centre(0.5f * static_cast<float>(m.cols - 1), 0.5f * static_cast<float>(m.rows - 1));
    // Counter-clockwise on screen is negative here: a streak at `degrees` comes to lie level.
    cv::Mat turn = cv::getRotationMatrix2D(centre, -degrees, 1.0);
    turn.at<double>(0, 2) += 0.5 * (canvas.width - 1) - centre.x;
    turn.at<double>(1, 2) += 0.5 * (canvas.height - 1) - centre.y;
    // The canvas's corners lie outside the picture, and OpenCV fetches outside points one by one: a
    // picture widened by its edge pixels beforehand (a plain copy) keeps every fetch inside.
    cv::Mat back;
    cv::invertAffineTransform(turn, back);
    double reach = 0;
    for (const cv::Point2d p :
         {cv::Point2d(0, 0), cv::Point2d(canvas.width - 1, 0), cv::Point2d(0, canvas.height - 1),
          cv::Point2d(canvas.width - 1, canvas.height - 1)}) {
        const double x = back.at<double>(0, 0) * p.x + back.at<double>(0, 1) * p.y + back.at<double>(0, 2);
        const double y = back.at<double>(1, 0) * p.x + back.at<double>(1, 1) * p.y + back.at<double>(1, 2);
        reach = std::max({reach, -x, -y, x - (m.cols - 1), y - (m.rows - 1)});
    }
    const int pad = static_cast<int>(std::ceil(reach)) + 2;
    thread_local cv::Mat widened, turned;
    cv::copyMakeBorder(m, widened, pad, pad, pad, pad, cv::BORDER_REPLICATE);
    cv::Mat fromWidened = turn.clone();
    fromWidened.at<double>(0, 2) -= pad * (turn.at<double>(0, 0) + turn.at<double>(0, 1));
    fromWidened.at<double>(1, 2) -= pad * (turn.at<double>(1, 0) + turn.at<double>(1, 1));
    cv::warpAffine(widened, turned, fromWidened, canvas, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
    cv::blur(turned, turned, cv::Size(length, 1), cv::Point(-1, -1), cv::BORDER_REPLICATE);
    cv::warpAffine(turned, m, turn, m.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
}

void FarBlur(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 50);
    if (amount == 0) return;
    cv::Mat m = MatOf(f);
    GaussianLike(m, m, std::max(0.5, 0.5 * amount * Scale(f)));
}

void RadialBlur(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 30);
    if (amount == 0) return;
    cv::Mat m = MatOf(f);
    SpinOrZoom(m, amount, 0.0);
}

void ZoomBlur(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 200);
    if (amount == 0) return;
    cv::Mat m = MatOf(f);
    SpinOrZoom(m, 0.0, std::log1p(amount / 400.0));
}

void AntiAlias(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 100);
    if (amount == 0) return;
    cv::Mat m = MatOf(f);
    thread_local cv::Mat grey, smooth, weight, keep;
    EdgeContrast(f, m, grey);
    // Smoothing follows edge contrast: full at a step of 48 levels or more (times the amount), none on flat.
    grey.convertTo(weight, CV_32F, 1.0 / 48.0);
    cv::min(weight, 1.0, weight);
    weight *= amount / 100.0;
    cv::subtract(1.0, weight, keep);
    GaussianLike(m, smooth, std::max(0.5, 0.8 * Scale(f)));
    cv::blendLinear(m, smooth, keep, weight, m);
}

void Sharpening(const Frame& f, float amount) {
    if (!f.Valid() || !(amount > 0.0f)) return;
    const double gain = 5.0 * std::min(amount, 0.7f);
    cv::Mat m = MatOf(f);
    thread_local cv::Mat blurred;
    GaussianLike(m, blurred, std::max(0.5, 1.0 * Scale(f)));
    cv::addWeighted(m, 1.0 + gain, blurred, -gain, 0.0, m);
}

void UnsharpMask(const Frame& f, int radius, double amount) {
    if (!f.Valid() || !(amount > 0.0) || radius <= 0) return;
    const double gain = 0.25 * std::min(amount, 7.5);
    cv::Mat m = MatOf(f);
    thread_local cv::Mat blurred;
    GaussianLike(m, blurred, std::max(0.5, std::min(radius, 30) * Scale(f)));
    cv::addWeighted(m, 1.0 + gain, blurred, -gain, 0.0, m);
}

void FindEdges(const Frame& f, int strength, int width) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    const int k = ScalePx(f, Clamp(width, 1, 3)) + 1;
    thread_local cv::Mat grey;
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    Presmooth(f, grey, grey);
    // Brightest minus darkest of each neighbourhood: contrast in a line `k - 1` pixels wide.
    cv::morphologyEx(grey, grey, cv::MORPH_GRADIENT,
                     cv::getStructuringElement(cv::MORPH_RECT, cv::Size(k, k)));
    grey.convertTo(grey, CV_8U, -EdgeGain(strength), 255.0);
    PutGrey(grey, m);
}

void Neon(const Frame& f, int strength, int width) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    const int k = ScalePx(f, Clamp(width, 1, 3)) + 1;
    const cv::Mat square = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(k, k));
    thread_local cv::Mat grey, brightness, edges, glow;
    // Each edge glows in the colour of its brighter side, as bright as the contrast across it.
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    Presmooth(f, grey, grey);
    cv::morphologyEx(grey, grey, cv::MORPH_GRADIENT, square);
    cv::cvtColor(grey, brightness, cv::COLOR_GRAY2BGRA);
    cv::dilate(m, edges, square);
    cv::multiply(edges, brightness, edges, EdgeGain(strength) / 255.0);
    const int halo = 2 * ScalePx(f, 3) + 1;
    cv::blur(edges, glow, cv::Size(halo, halo));
    cv::addWeighted(edges, 1.0, glow, 0.7, 0.0, edges);
    PutColour(edges, m);
}

void Emboss(const Frame& f, float depth) {
    if (!f.Valid()) return;
    depth = std::isfinite(depth) ? Clamp(depth, 0.0f, 2.55f) : 0.0f;
    cv::Mat m = MatOf(f);
    thread_local cv::Mat grey, response;
    PictureRelief(f, m, response);
    response.convertTo(grey, CV_8U, depth / 3.0, 128.0);
    PutGrey(grey, m);
}

void Relief(const Frame& f) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    thread_local cv::Mat grey, response, half, shade;
    PictureRelief(f, m, response);
    response.convertTo(grey, CV_8U, 0.3, 128.0);
    half.create(m.size(), CV_8U);
    half.setTo(128);
    const cv::Mat planes[] = {grey, grey, grey, half};
    cv::merge(planes, 4, shade);
    // The shading is centred on 128, alpha's included, so the fourth byte comes out as it went in.
    cv::addWeighted(m, 1.0, shade, 1.0, -128.0, m);
}

void Stamp(const Frame& f, int threshold) {
    if (!f.Valid()) return;
    const double level = 2.0 * Clamp(threshold, 0, 128);
    cv::Mat m = MatOf(f);
    thread_local cv::Mat grey;
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    // Smoothing first rounds the shapes off, as ink on rubber would.
    cv::GaussianBlur(grey, grey, cv::Size(), std::max(0.5, 1.2 * Scale(f)));
    // Black below the level, white above, with a ramp of 16 levels so the edges are not jagged.
    grey.convertTo(grey, CV_8U, 16.0, 128.0 - 16.0 * level);
    PutGrey(grey, m);
}

void Rock(const Frame& f, int depth) {
    if (!f.Valid()) return;
    depth = Clamp(depth, 0, 10);
    cv::Mat m = MatOf(f);
    const double scale = Scale(f);
    const int d = ScalePx(f, 1);
    thread_local cv::Mat grey, height, response, base;
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    // The surface: the picture's shapes roughened by lumps and fine grit, always the same for a size.
    cv::GaussianBlur(grey, height, cv::Size(), std::max(0.5, scale));
    cv::addWeighted(height, 0.75, Texture(m.size(), std::max(2.0, 8.0 * scale), 0x5EED1), 0.25, 0.0, height);
    cv::addWeighted(height, 0.85, Texture(m.size(), std::max(1.0, 1.5 * scale), 0x5EED2), 0.15, 0.0, height);
    EmbossResponse(height, response, d);
    // A muted stone tone of the picture, lit by the surface.
    grey.convertTo(base, CV_16S, 0.7, 40.0);
    cv::addWeighted(base, 1.0, response, 0.08 * depth, 0.0, grey, CV_8U);
    PutGrey(grey, m);
}

void Make3DEffect(const Frame& f, int depth) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    const int band = std::min(ScalePx(f, 2.0 * Clamp(depth, 1, 10)), std::min(m.cols, m.rows) / 2);
    // Lit edges mix half-way to white, shaded ones half-way to black; the fourth byte is left alone.
    const auto light = [](cv::Mat area) {
        cv::multiply(area, cv::Scalar(0.5, 0.5, 0.5, 1.0), area);
        cv::add(area, cv::Scalar(128, 128, 128, 0), area);
    };
    const auto shade = [](cv::Mat area) { cv::multiply(area, cv::Scalar(0.5, 0.5, 0.5, 1.0), area); };
    // Ring by ring from the outside, each side one pixel shorter at both ends: mitred corners.
    for (int i = 0; i < band; ++i) {
        const int across = m.cols - 2 * i, down = m.rows - 2 * i - 2;
        light(m(cv::Rect(i, i, across, 1)));
        shade(m(cv::Rect(i, m.rows - 1 - i, across, 1)));
        if (down > 0) {
            light(m(cv::Rect(i, i + 1, 1, down)));
            shade(m(cv::Rect(m.cols - 1 - i, i + 1, 1, down)));
        }
    }
}

void OilPaint(const Frame& f, int radius, int levels) {
    if (!f.Valid()) return;
    radius = Clamp(radius, 0, 5);
    if (radius == 0) return;
    cv::Mat m = MatOf(f);
    const int r = ScalePx(f, radius);
    // Kuwahara's filter: of the four (r+1)-square windows that have the pixel at a corner, the one
    // with the least variation in brightness gives its mean colour. Strokes come out flat, edges stay.
    // One box filter gives all four windows' means: they are its values at four offsets.
    thread_local cv::Mat padded, grey, mean, spread, colours;
    cv::copyMakeBorder(m, padded, r, r, r, r, cv::BORDER_REPLICATE);
    cv::cvtColor(padded, grey, cv::COLOR_BGRA2GRAY);
    const cv::Size box(r + 1, r + 1);
    const cv::Point corner(0, 0);
    cv::boxFilter(grey, mean, CV_32F, box, corner, true, cv::BORDER_REPLICATE);
    cv::sqrBoxFilter(grey, spread, CV_32F, box, corner, true, cv::BORDER_REPLICATE);
    cv::boxFilter(padded, colours, -1, box, corner, true, cv::BORDER_REPLICATE);
    cv::multiply(mean, mean, mean);
    cv::subtract(spread, mean, spread); // the variance
    // Choosing among four shifted images per pixel has no OpenCV operation.
    for (int y = 0; y < m.rows; ++y) {
        const float* top = spread.ptr<float>(y);
        const float* bottom = spread.ptr<float>(y + r);
        const std::uint8_t* topColour = colours.ptr<std::uint8_t>(y);
        const std::uint8_t* bottomColour = colours.ptr<std::uint8_t>(y + r);
        std::uint8_t* out = m.ptr<std::uint8_t>(y);
        for (int x = 0; x < m.cols; ++x) {
            const std::uint8_t* best = topColour + 4 * x;
            float least = top[x];
            if (top[x + r] < least) least = top[x + r], best = topColour + 4 * (x + r);
            if (bottom[x] < least) least = bottom[x], best = bottomColour + 4 * x;
            if (bottom[x + r] < least) best = bottomColour + 4 * (x + r);
            out[4 * x] = best[0], out[4 * x + 1] = best[1], out[4 * x + 2] = best[2];
        }
    }
    levels = Clamp(levels, 0, 255);
    if (levels == 0) return;
    levels = std::max(levels, 2);
    std::uint8_t lut[256];
    for (int v = 0; v < 256; ++v)
        lut[v] = static_cast<std::uint8_t>(
            std::lround(std::round(v * (levels - 1) / 255.0) * 255.0 / (levels - 1)));
    ApplyLut(f, lut);
}

void Mosaic(const Frame& f, int size) {
    if (!f.Valid()) return;
    size = Clamp(size, 0, 50);
    if (size <= 1) return;
    cv::Mat m = MatOf(f);
    const int b = ScalePx(f, size);
    if (b <= 1) return;
    // Whole blocks from the top left; the blocks cut by the right and bottom edges average what they hold.
    const int fullW = m.cols / b * b, fullH = m.rows / b * b, restW = m.cols - fullW, restH = m.rows - fullH;
    AverageBlocks(m(cv::Rect(0, 0, fullW, fullH)), b, b);
    AverageBlocks(m(cv::Rect(fullW, 0, restW, fullH)), restW, b);
    AverageBlocks(m(cv::Rect(0, fullH, fullW, restH)), b, restH);
    AverageBlocks(m(cv::Rect(fullW, fullH, restW, restH)), restW, restH);
}

void Fragment(const Frame& f, int offset) {
    if (!f.Valid()) return;
    offset = Clamp(offset, 0, 50);
    if (offset == 0) return;
    cv::Mat m = MatOf(f);
    const int o = ScalePx(f, offset);
    thread_local cv::Mat padded, sum;
    cv::copyMakeBorder(m, padded, o, o, o, o, cv::BORDER_REPLICATE);
    // The copies sit diagonally from the pixel: up-left, up-right, down-left, down-right.
    const auto copy = [&](int x, int y) { return padded(cv::Rect(x, y, m.cols, m.rows)); };
    cv::add(copy(0, 0), copy(2 * o, 0), sum, cv::noArray(), CV_16U);
    cv::add(sum, copy(0, 2 * o), sum, cv::noArray(), CV_16U);
    cv::add(sum, copy(2 * o, 2 * o), sum, cv::noArray(), CV_16U);
    sum.convertTo(m, CV_8U, 0.25);
}

void Diffuse(const Frame& f, std::uint32_t seed) {
    if (!f.Valid()) return;
    cv::Mat m = MatOf(f);
    Scatter(m, ScalePx(f, 2), seed);
}

void FrostGlass(const Frame& f, int amount, std::uint32_t seed) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 3);
    if (amount == 0) return;
    cv::Mat m = MatOf(f);
    Scatter(m, ScalePx(f, 2.0 * amount), seed);
    // A little blur makes the scattered grain milky, as light through ground glass.
    GaussianLike(m, m, std::max(0.5, 0.7 * Scale(f)));
}

void DetectBorders(const Frame& f, int threshold, std::uint32_t border, std::uint32_t background) {
    if (!f.Valid()) return;
    threshold = Clamp(threshold, 0, 128);
    if (threshold == 0) return;
    cv::Mat m = MatOf(f);
    thread_local cv::Mat grey, mask, colour;
    EdgeContrast(f, m, grey);
    cv::threshold(grey, mask, threshold, 255, cv::THRESH_BINARY);
    const int thick = ScalePx(f, 1);
    if (thick > 1) cv::dilate(mask, mask, cv::getStructuringElement(cv::MORPH_RECT, cv::Size(thick, thick)));
    const Bgr fg = BgrOf(border), bg = BgrOf(background);
    colour.create(m.size(), CV_8UC3);
    colour.setTo(cv::Scalar(bg.b, bg.g, bg.r));
    colour.setTo(cv::Scalar(fg.b, fg.g, fg.r), mask);
    PutColour(colour, m);
}

void NotePaper(const Frame& f, int threshold, int grain, int texture, int lineWidth, std::uint32_t paper,
               std::uint32_t ink) {
    if (!f.Valid()) return;
    threshold = Clamp(threshold, 0, 255);
    grain = Clamp(grain, 1, 10);
    texture = Clamp(texture, 0, 100);
    lineWidth = Clamp(lineWidth, 1, 5);
    cv::Mat m = MatOf(f);
    const double scale = Scale(f);
    thread_local cv::Mat grey, around, sketch, fibres, inkWeight, paperWeight, sheet, inkSheet, out;
    cv::cvtColor(m, grey, cv::COLOR_BGRA2GRAY);
    // A pencil sketch: each pixel against the mean of its surroundings, dark only where it is darker
    // than they are, so outlines and shadows are drawn and flat areas stay paper.
    cv::GaussianBlur(grey, around, cv::Size(), std::max(0.8, (2.0 + 2.0 * lineWidth) * scale));
    cv::add(grey, 8, grey);
    cv::add(around, 8, around);
    cv::divide(grey, around, sketch, 255.0);
    // Pencil grain breaks the strokes up.
    const double grainPx = std::max(1.0, grain * scale);
    cv::addWeighted(sketch, 1.0, Texture(m.size(), grainPx, 0xA11CE), 0.1, -12.8, sketch);
    // Ink where the sketch falls below the level, with a ramp of 32 levels for soft strokes.
    const double level = 128.0 + 0.6 * threshold;
    sketch.convertTo(inkWeight, CV_32F, -8.0 / 255.0, 8.0 * level / 255.0);
    cv::max(inkWeight, 0.0, inkWeight);
    cv::min(inkWeight, 1.0, inkWeight);
    cv::subtract(1.0, inkWeight, paperWeight);
    // The paper: its colour raised and lowered by the relief of its fibres.
    EmbossResponse(Texture(m.size(), grainPx, 0xF1B3E), fibres, ScalePx(f, 1));
    const Bgr p = BgrOf(paper), q = BgrOf(ink);
    thread_local cv::Mat planes[3];
    fibres.convertTo(planes[0], CV_8U, texture / 200.0, p.b);
    fibres.convertTo(planes[1], CV_8U, texture / 200.0, p.g);
    fibres.convertTo(planes[2], CV_8U, texture / 200.0, p.r);
    cv::merge(planes, 3, sheet);
    inkSheet.create(m.size(), CV_8UC3);
    inkSheet.setTo(cv::Scalar(q.b, q.g, q.r));
    cv::blendLinear(sheet, inkSheet, paperWeight, inkWeight, out);
    PutColour(out, m);
}

void RandomicalPoints(const Frame& f, int size, std::uint32_t colour, std::uint32_t seed) {
    constexpr int kShift = 4; // positions in sixteenths of a pixel, for round dots at any size
    // Such positions must fit an int; no real frame comes near.
    if (!f.Valid() || f.width >= (1 << 26) || f.height >= (1 << 26)) return;
    cv::Mat m = MatOf(f);
    const double radius = 0.5 * std::max(1.0, Clamp(size, 2, 100) * Scale(f));
    // Enough dots to cover about a twentieth of the picture, whatever their size.
    const double area = static_cast<double>(m.cols) * m.rows;
    const int count =
        static_cast<int>(std::min(1e6, std::ceil(0.05 * area / (std::numbers::pi * radius * radius))));
    const Bgr c = BgrOf(colour);
    const cv::Scalar paint(c.b, c.g, c.r, 255);
    const int r16 = static_cast<int>(std::lround(radius * (1 << kShift)));
    Random random(seed);
    for (int i = 0; i < count; ++i) {
        const cv::Point centre(random.Range(0, m.cols * (1 << kShift) - 1),
                               random.Range(0, m.rows * (1 << kShift) - 1));
        cv::circle(m, centre, r16, paint, cv::FILLED, cv::LINE_AA, kShift);
    }
}

} // namespace morvane::imaging
