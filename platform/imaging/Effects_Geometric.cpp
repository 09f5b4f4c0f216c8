#include "Effects_Geometric.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <string_view>
#include <vector>

namespace morvane::imaging {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTurn = 2 * kPi;

// What a cached map was made for: the effect, the frame size and the (clamped) parameters.
struct MapKey {
    std::string_view effect;
    int width = 0, height = 0;
    std::array<double, 4> params{};
    bool operator==(const MapKey&) const = default;
};

struct Sampling {
    int interpolation = cv::INTER_LINEAR;
    int border = cv::BORDER_REFLECT;
};
constexpr Sampling kSmooth{};
// Whole-pixel moves copy pixels exactly; interpolating would only blur the block edges.
constexpr Sampling kWhole{cv::INTER_NEAREST, cv::BORDER_REFLECT};
// The effects that show what lies behind the picture (tile gaps, the uncovered table under a rolled
// page) point there outside the frame and get the border colour.
constexpr Sampling kWholeGaps{cv::INTER_NEAREST, cv::BORDER_CONSTANT};
constexpr Sampling kSmoothGaps{cv::INTER_LINEAR, cv::BORDER_CONSTANT};
const cv::Scalar kBehind(0, 0, 0, 255);
constexpr float kOutside = -16.f;

// Points outside the frame send cv::remap down a slow path, pixel by pixel. Folding them in beforehand
// reads the same pixels a reflected or wrapped border would give (bilinear reads of a reflection too:
// within a pixel of the edge both neighbours are the edge pixel) and keeps the map on the fast path.
float FoldInto(float v, int n, int border) {
    const double last = n - 1;
    if (v >= 0 && v <= last) return v;
    switch (border) {
    case cv::BORDER_WRAP: {
        const double t = std::fmod(v, n);
        return static_cast<float>(t < 0 ? t + n : t);
    }
    case cv::BORDER_REFLECT: { // ... c b a | a b c ..., repeating every 2n
        double t = std::fmod(v, 2.0 * n);
        if (t < 0) t += 2.0 * n;
        return static_cast<float>(t <= last ? t : t <= n ? last : t <= 2 * last + 1 ? 2 * last + 1 - t : 0);
    }
    default: // a constant border: what lies outside is meant to show
        return v;
    }
}

void FoldMap(cv::Mat& xy, int border) {
    for (int y = 0; y < xy.rows; ++y) {
        auto* row = xy.ptr<cv::Point2f>(y);
        for (int x = 0; x < xy.cols; ++x)
            row[x] = {FoldInto(row[x].x, xy.cols, border), FoldInto(row[x].y, xy.rows, border)};
    }
}

struct CachedMap {
    MapKey key;
    cv::Mat whole, fraction; // CV_16SC2 and CV_16UC1 fixed point; `fraction` is empty for nearest
    std::uint64_t lastUse = 0;
    std::size_t Bytes() const {
        return whole.total() * whole.elemSize() + fraction.total() * fraction.elemSize();
    }
};

// A few maps per thread, least recently used out first. A chain usually holds one or two geometric
// effects at two sizes (preview and output); the byte budget keeps full-HD maps from piling up.
class MapCache {
public:
    template <class Build>
    const CachedMap& Get(const MapKey& key, const Sampling& s, Build&& build) {
        ++m_clock;
        for (CachedMap& m : m_entries)
            if (m.key == key) {
                m.lastUse = m_clock;
                return m;
            }
        cv::Mat xy(key.height, key.width, CV_32FC2);
        build(xy);
        FoldMap(xy, s.border);
        CachedMap made{key, {}, {}, m_clock};
        cv::convertMaps(xy, cv::noArray(), made.whole, made.fraction, CV_16SC2,
                        s.interpolation == cv::INTER_NEAREST);
        std::size_t bytes = made.Bytes();
        for (const CachedMap& m : m_entries)
            bytes += m.Bytes();
        while (!m_entries.empty() && (m_entries.size() >= kMaxEntries || bytes > kBudget)) {
            auto oldest =
                std::min_element(m_entries.begin(), m_entries.end(),
                                 [](const auto& a, const auto& b) { return a.lastUse < b.lastUse; });
            bytes -= oldest->Bytes();
            m_entries.erase(oldest);
        }
        m_entries.push_back(std::move(made));
        return m_entries.back();
    }

private:
    static constexpr std::size_t kMaxEntries = 8;
    static constexpr std::size_t kBudget = std::size_t{64} << 20;
    std::vector<CachedMap> m_entries;
    std::uint64_t m_clock = 0;
};

MapCache& ThreadCache() {
    thread_local MapCache cache;
    return cache;
}

cv::Mat& ThreadScratch() {
    thread_local cv::Mat scratch;
    return scratch;
}

// cv::remap addresses pixels with 16-bit coordinates.
bool Remappable(const Frame& f) {
    return f.Valid() && f.width < SHRT_MAX && f.height < SHRT_MAX;
}

// Output pixel (x, y) takes the input at the map's point there. remap cannot work in place, so it
// writes to a per-thread scratch that is then copied into the frame's own rows.
template <class Build>
void RemapWith(const Frame& f, const MapKey& key, const Sampling& s, Build&& build) {
    const CachedMap& m = ThreadCache().Get(key, s, build);
    cv::Mat frame = MatOf(f);
    cv::Mat& scratch = ThreadScratch();
    cv::remap(frame, scratch, m.whole, m.fraction, s.interpolation, s.border, kBehind);
    scratch.copyTo(frame);
}

// Fills a CV_32FC2 map from a formula of the output position. Every effect has its own formula, and
// no OpenCV operation evaluates an arbitrary one; this runs once per cached map.
template <class Fn>
void FillEach(cv::Mat& xy, Fn&& source) {
    for (int y = 0; y < xy.rows; ++y) {
        auto* row = xy.ptr<cv::Point2f>(y);
        for (int x = 0; x < xy.cols; ++x)
            row[x] = source(x, y);
    }
}

template <class Fn>
void RemapEach(const Frame& f, const MapKey& key, const Sampling& s, Fn&& source) {
    RemapWith(f, key, s, [&](cv::Mat& xy) { FillEach(xy, source); });
}

// NaN would slip through Clamp as its lower bound; it means "no value", so the neutral one.
double Finite(double v, double neutral) {
    return std::isnan(v) ? neutral : v;
}

// The centre of the frame in pixel coordinates: mirror images of the frame mirror about it exactly.
double CentreX(const Frame& f) {
    return (f.width - 1) / 2.0;
}
double CentreY(const Frame& f) {
    return (f.height - 1) / 2.0;
}
double HalfDiagonal(const Frame& f) {
    return 0.5 * std::hypot(f.width, f.height);
}

cv::Point2f At(double x, double y) {
    return {static_cast<float>(x), static_cast<float>(y)};
}

// Each point within `radius` of (cx, cy) turned by maxAngle * (1 - r / radius)^power: most at the
// centre, fading to nothing at the radius, so the picture stays whole.
cv::Point2f Turned(double dx, double dy, double cx, double cy, double radius, double maxAngle, int power) {
    const double r = std::hypot(dx, dy);
    if (r >= radius) return At(cx + dx, cy + dy);
    const double fade = 1 - r / radius;
    double angle = maxAngle;
    for (int i = 0; i < power; ++i)
        angle *= fade;
    const double c = std::cos(angle), s = std::sin(angle);
    return At(cx + dx * c - dy * s, cy + dx * s + dy * c);
}

void Twist(const Frame& f, const MapKey& key, double maxAngle, double radius, int power) {
    const double cx = CentreX(f), cy = CentreY(f);
    RemapEach(f, key, kSmooth,
              [&](int x, int y) { return Turned(x - cx, y - cy, cx, cy, radius, maxAngle, power); });
}

// A radial lens inside the ellipse of semi-axes (ax, ay) about the centre: the point at normalised
// radius p takes the input at p * (1 - k * (1 - p^2)^power). k > 0 magnifies the middle (a bulge),
// k < 0 shrinks it (a pinch); the ellipse's rim and all outside it stay in place. The mapping stays
// one-to-one for k below 1, and above -0.5 (power 1) or -1.25 (power 2).
cv::Point2f Lensed(double dx, double dy, double cx, double cy, double ax, double ay, double k, int power) {
    const double p2 = (dx * dx) / (ax * ax) + (dy * dy) / (ay * ay);
    if (p2 >= 1) return At(cx + dx, cy + dy);
    const double inside = power == 1 ? 1 - p2 : (1 - p2) * (1 - p2);
    const double scale = 1 - k * inside;
    return At(cx + dx * scale, cy + dy * scale);
}

void Lens(const Frame& f, const MapKey& key, double ax, double ay, double k, int power) {
    const double cx = CentreX(f), cy = CentreY(f);
    ax = std::max(ax, 0.5), ay = std::max(ay, 0.5);
    RemapEach(f, key, kSmooth,
              [&](int x, int y) { return Lensed(x - cx, y - cy, cx, cy, ax, ay, k, power); });
}

// Rings about the centre: each point takes the input further out or further in along its ray.
void Ripples(const Frame& f, int amplitude, int wavelength, bool fade) {
    amplitude = Clamp(amplitude, 0, 20);
    wavelength = Clamp(wavelength, 0, 20);
    if (!Remappable(f) || amplitude == 0) return;
    const double a = ScalePx(f, amplitude);
    const double period = ScalePx(f, 10.0 * (wavelength == 0 ? 4 : wavelength), 2);
    const double cx = CentreX(f), cy = CentreY(f), far = HalfDiagonal(f);
    RemapEach(f, {"CircularWaves", f.width, f.height, {double(amplitude), double(wavelength), double(fade)}},
              kSmooth, [&](int x, int y) {
                  const double dx = x - cx, dy = y - cy, r = std::hypot(dx, dy);
                  if (r == 0) return At(cx, cy);
                  const double weight = fade ? (1 - r / far) * (1 - r / far) : 1.0;
                  const double scale = (r + a * weight * std::sin(kTurn * r / period)) / r;
                  return At(cx + dx * scale, cy + dy * scale);
              });
}

} // namespace

void Flip(const Frame& f, int scaleWidth, int scaleHeight, bool horizontal, bool vertical) {
    if (!f.Valid() || scaleWidth <= 0 || scaleHeight <= 0 || (!horizontal && !vertical)) return;
    cv::Mat m = MatOf(f);
    cv::flip(m, m, horizontal && vertical ? -1 : horizontal ? 1 : 0); // swaps pixel pairs, so in place works
}

void Twirl(const Frame& f, int amount) {
    amount = Clamp(amount, -100, 100);
    if (!Remappable(f) || amount == 0) return;
    Twist(f, {"Twirl", f.width, f.height, {double(amount)}}, amount / 100.0 * kTurn, HalfDiagonal(f), 2);
}

void TwirlEx(const Frame& f, double angle, double radius) {
    angle = Clamp(Finite(angle, 0), -360.0, 360.0);
    radius = std::abs(Clamp(Finite(radius, 0), -360.0, 360.0));
    if (!Remappable(f) || angle == 0) return;
    const double reach = radius == 0 ? HalfDiagonal(f) : std::max(1.0, radius / 100 * HalfDiagonal(f));
    Twist(f, {"TwirlEx", f.width, f.height, {angle, radius}}, angle * kPi / 180, reach, 2);
}

void Swirl(const Frame& f, int amount) {
    amount = Clamp(amount, -255, 255);
    if (!Remappable(f) || amount == 0) return;
    const double reach = std::min(f.width, f.height) / 2.0;
    Twist(f, {"Swirl", f.width, f.height, {double(amount)}}, amount / 255.0 * 3 * kTurn, reach, 3);
}

void FishEye(const Frame& f) {
    if (!Remappable(f)) return;
    const double reach = HalfDiagonal(f);
    Lens(f, {"FishEye", f.width, f.height}, reach, reach, 0.5, 1);
}

void FishEyeEx(const Frame& f, double amount) {
    amount = Clamp(Finite(amount, 0), -255.0, 255.0);
    if (!Remappable(f) || amount == 0) return;
    // The bulge keeps a lens's crisp rim; the pinch fades in smoothly, or it would smear the edges.
    const bool bulge = amount > 0;
    Lens(f, {"FishEyeEx", f.width, f.height, {amount}}, f.width / 2.0, f.height / 2.0,
         amount / 255 * (bulge ? 0.75 : 0.9), bulge ? 1 : 2);
}

void Waves(const Frame& f, int amplitude, int horizontal, std::uint8_t wavelength) {
    amplitude = Clamp(amplitude, 0, 25);
    const int length = std::min<int>(wavelength, 25);
    if (!Remappable(f) || amplitude == 0) return;
    const double a = ScalePx(f, amplitude);
    const double period = ScalePx(f, 20.0 * (length == 0 ? 5 : length), 2);
    const bool rows = horizontal != 0;
    RemapEach(f, {"Waves", f.width, f.height, {double(amplitude), double(length), double(rows)}}, kSmooth,
              [&](int x, int y) {
                  return rows ? At(x + a * std::sin(kTurn * y / period), y)
                              : At(x, y + a * std::sin(kTurn * x / period));
              });
}

void CircularWaves(const Frame& f, int amplitude, int wavelength) {
    Ripples(f, amplitude, wavelength, false);
}

void CircularWavesEx(const Frame& f, int amplitude, int wavelength) {
    Ripples(f, amplitude, wavelength, true);
}

void BlockWaves(const Frame& f, int amplitude, int blockSize, int /*mode: the program knows only one*/) {
    amplitude = Clamp(amplitude, 0, 20);
    blockSize = Clamp(blockSize, 0, 10);
    if (!Remappable(f) || amplitude == 0) return;
    const int block = ScalePx(f, 8 + 4 * blockSize, 2);
    const double a = ScalePx(f, amplitude), period = ScalePx(f, 160, 2);
    // Each block moves as a whole, by the wave at its centre: across by its row, up and down by its column.
    auto shift = [&](int cell) { return std::lround(a * std::sin(kTurn * (cell + 0.5) * block / period)); };
    RemapEach(f, {"BlockWaves", f.width, f.height, {double(amplitude), double(blockSize)}}, kWhole,
              [&](int x, int y) { return At(x + shift(y / block), y + shift(x / block)); });
}

void PolarCoordinates(const Frame& f, int mode) {
    if (!Remappable(f)) return;
    const bool toPolar = Clamp(mode, 0, 1) == 0;
    const double cx = CentreX(f), cy = CentreY(f), hw = f.width / 2.0, hh = f.height / 2.0;
    RemapEach(f, {"PolarCoordinates", f.width, f.height, {double(toPolar)}}, kSmooth, [&](int x, int y) {
        if (toPolar) { // the top row gathers at the centre, the bottom row runs round the rim
            const double nx = (x - cx) / hw, ny = (y - cy) / hh;
            double turn = std::atan2(nx, -ny) / kTurn; // from the top, clockwise
            if (turn < 0) turn += 1;
            return At(turn * f.width - 0.5, std::hypot(nx, ny) * f.height - 0.5);
        }
        const double turn = (x + 0.5) / f.width * kTurn, r = (y + 0.5) / f.height;
        return At(cx + r * hw * std::sin(turn), cy - r * hh * std::cos(turn));
    });
}

void Cilindrical(const Frame& f, double amount) {
    amount = Clamp(Finite(amount, 0), -30.0, 30.0);
    if (!Remappable(f) || std::abs(amount) < 1e-6) return; // too slight to show, and would divide by ~0
    // Seen from the front, a picture wrapped round a cylinder over `arc` radians either side of the
    // middle; concave: the inside of the cylinder, the middle squeezed and the sides stretched.
    const double arc = std::abs(amount) / 30 * kPi / 2, cx = CentreX(f), half = f.width / 2.0;
    RemapEach(f, {"Cilindrical", f.width, f.height, {amount}}, kSmooth, [&](int x, int y) {
        const double u = (x - cx) / half;
        const double from =
            amount > 0 ? std::asin(u * std::sin(arc)) / arc : std::sin(u * arc) / std::sin(arc);
        return At(cx + from * half, y);
    });
}

void Roll(const Frame& f) {
    if (!Remappable(f)) return;
    // The page lifts off at `lift` and rolls towards the viewer round a cylinder of radius `r` lying
    // on it; the rolled part is 4 radians of paper, so the roll's top shows it back to front.
    const double w = f.width, lift = 0.8 * w, r = 0.05 * w, rolled = (w - lift) / r;
    RemapEach(f, {"Roll", f.width, f.height}, kSmoothGaps, [&](int x, int y) {
        const double px = x + 0.5;
        if (px > lift + r) return At(kOutside, y); // the page has gone from here
        if (px >= lift - r) {
            const double angle = kPi - std::asin(Clamp((px - lift) / r, -1.0, 1.0));
            if (angle <= rolled)
                return At(std::min(lift + r * angle - 0.5, w - 1), y); // not past the paper's end
        }
        return At(x, y);
    });
    // Without light and shade the roll would read as a squeezed strip: lit from the front left, and
    // casting a soft shadow on the page before it.
    const double rollLeft = lift + r * std::sin(std::min(rolled, 1.5 * kPi));
    const int first = Clamp(static_cast<int>(rollLeft - r), 0, f.width);
    const int last = Clamp(static_cast<int>(std::ceil(lift + r)), 0, f.width);
    if (last <= first) return;
    cv::Mat gain(1, last - first, CV_8UC4);
    for (int x = first; x < last; ++x) {
        const double px = x + 0.5, u = Clamp((px - lift) / r, -1.0, 1.0);
        const double light = px >= rollLeft
                                 ? 0.35 + 0.7 * std::max(0.0, -0.5 * u + 0.87 * std::sqrt(1 - u * u))
                                 : 1 - 0.45 * std::max(0.0, 1 - (rollLeft - px) / r);
        const auto g = static_cast<std::uint8_t>(255 * std::min(1.0, light));
        gain.at<cv::Vec4b>(0, x - first) = {g, g, g, 255};
    }
    cv::Mat band = MatOf(f).colRange(first, last);
    cv::multiply(band, cv::repeat(gain, f.height, 1), band, 1.0 / 255);
}

void Melt(const Frame& f, std::uint32_t seed) {
    if (!Remappable(f)) return;
    RemapWith(f, {"Melt", f.width, f.height, {double(seed)}}, kSmooth, [&](cv::Mat& xy) {
        // How far each column has run down at the bottom: a gentle sag plus rounded drips.
        Random rng(seed);
        std::vector<double> run(static_cast<std::size_t>(f.width));
        const double phase = rng.Range(0, 359) * kPi / 180, sagPeriod = ScalePx(f, 200, 2);
        for (int x = 0; x < f.width; ++x)
            run[x] = f.height * 0.02 * (1 + std::sin(phase + kTurn * x / sagPeriod));
        const int drips = 1 + f.width / ScalePx(f, 24);
        for (int i = 0; i < drips; ++i) {
            const int centre = rng.Range(0, f.width - 1), half = ScalePx(f, rng.Range(3, 12));
            const double length = f.height * rng.Range(4, 30) / 100.0;
            for (int x = std::max(0, centre - half); x <= std::min(f.width - 1, centre + half); ++x) {
                const double t = double(x - centre) / (half + 1);
                run[x] = std::max(run[x], length * std::sqrt(1 - t * t));
            }
        }
        // The top row stays, lower rows come from higher up: the columns stretch downwards.
        const double bottom = std::max(1, f.height - 1);
        FillEach(xy, [&](int x, int y) { return At(x, y - run[x] * y / bottom); });
    });
}

void Caricature(const Frame& f) {
    if (!Remappable(f)) return;
    Lens(f, {"Caricature", f.width, f.height}, f.width / 2.0, f.height / 2.0, 0.6, 2);
}

void FourCorners(const Frame& f) {
    if (!Remappable(f)) return;
    const double cx = CentreX(f), cy = CentreY(f), qx = f.width / 4.0, qy = f.height / 4.0;
    const double reach = std::min(f.width, f.height) / 4.0, angle = kTurn / 3;
    // Quarters turn in mirrored senses, so a picture symmetric about the middle stays so.
    RemapEach(f, {"FourCorners", f.width, f.height}, kSmooth, [&](int x, int y) {
        const double sx = x < cx ? -1 : 1, sy = y < cy ? -1 : 1;
        const double ox = cx + sx * qx, oy = cy + sy * qy;
        return Turned(x - ox, y - oy, ox, oy, reach, sx * sy * angle, 2);
    });
}

void Canvas(const Frame& f, int x) {
    if (!f.Valid() || x <= 0) return;
    const int axis = ScalePx(f, std::min(x, kReferenceWidth));
    if (axis >= f.width) return;
    // Right of the axis the left part in a mirror, bouncing back and forth should the right be wider.
    // Only columns left of the axis are read and only those right of it written, so no copy is needed.
    cv::Mat m = MatOf(f), left = m.colRange(0, axis);
    for (int start = axis, k = 0; start < f.width; start += axis, ++k) {
        const int n = std::min(axis, f.width - start);
        cv::Mat out = m.colRange(start, start + n);
        if (k % 2 == 0)
            cv::flip(left.colRange(axis - n, axis), out, 1);
        else
            left.colRange(0, n).copyTo(out);
    }
}

void Tile(const Frame& f, int width, int height, int gap) {
    width = Clamp(width, 50, 100);
    height = Clamp(height, 50, 100);
    gap = Clamp(gap, 0, 25);
    if (!Remappable(f) || gap == 0) return;
    const int tw = ScalePx(f, width), th = ScalePx(f, height);
    const int g = std::min(ScalePx(f, gap, 0), std::min(tw, th) - 1);
    if (g <= 0) return;
    RemapWith(f, {"Tile", f.width, f.height, {double(width), double(height), double(gap)}}, kWholeGaps,
              [&](cv::Mat& xy) {
                  // Each tile is its cell less the gap, moved by up to half the gap either way; the
                  // jitter is fixed so that the tiles stay put from frame to frame.
                  const int cols = (f.width + tw - 1) / tw, rows = (f.height + th - 1) / th;
                  std::vector<cv::Point> jitter(static_cast<std::size_t>(cols) * rows);
                  Random rng(0x711E);
                  for (auto& j : jitter)
                      j = {rng.Range(-g / 2, g / 2), rng.Range(-g / 2, g / 2)};
                  const int lead = g / 2;
                  FillEach(xy, [&](int x, int y) {
                      const cv::Point j = jitter[static_cast<std::size_t>(y / th) * cols + x / tw];
                      const int lx = x % tw - j.x, ly = y % th - j.y;
                      const bool onTile =
                          lx >= lead && lx < tw - (g - lead) && ly >= lead && ly < th - (g - lead);
                      return onTile ? At(x - j.x, y - j.y) : At(kOutside, kOutside);
                  });
              });
}

void Shift(const Frame& f, int amount, std::uint32_t seed) {
    amount = Clamp(amount, 0, 255);
    if (!Remappable(f) || amount == 0) return;
    const int most = ScalePx(f, amount);
    // Wrapping brings in what left at the other side, so no row gets a smeared or mirrored end.
    const Sampling wrap{cv::INTER_NEAREST, cv::BORDER_WRAP};
    RemapWith(f, {"Shift", f.width, f.height, {double(amount), double(seed)}}, wrap, [&](cv::Mat& xy) {
        // Bands of a few rows, as many reference rows high at any size, each moved its own way.
        Random rng(seed);
        const int tallest = ScalePx(f, 4);
        for (int y = 0; y < xy.rows;) {
            const int by = rng.Range(-most, most);
            for (const int end = std::min(xy.rows, y + rng.Range(1, tallest)); y < end; ++y) {
                auto* row = xy.ptr<cv::Point2f>(y);
                for (int x = 0; x < xy.cols; ++x)
                    row[x] = At(x - by, y);
            }
        }
    });
}

void RainDrops(const Frame& f, int count, int size, int depth, std::uint32_t seed) {
    count = Clamp(count, 1, 100);
    size = Clamp(size, 1, 100);
    depth = Clamp(depth, 1, 100);
    if (!Remappable(f)) return;
    const MapKey key{
        "RainDrops", f.width, f.height, {double(count), double(size), double(depth), double(seed)}};
    RemapWith(f, key, kSmooth, [&](cv::Mat& xy) {
        FillEach(xy, [](int x, int y) { return At(x, y); });
        // Each drop a ball of water: it shows its surroundings upside down, from further off the deeper
        // it is and squeezed towards its rim; drops drawn later lie on top. Only each drop's own square
        // is visited, which no whole-map OpenCV operation would do.
        Random rng(seed);
        const double reachOut = 0.5 + 1.5 * depth / 100, base = (4 + 0.6 * size) * f.width / kReferenceWidth;
        for (int i = 0; i < count; ++i) {
            const int cx = rng.Range(0, f.width - 1), cy = rng.Range(0, f.height - 1);
            const double r = std::max(1.0, base * rng.Range(50, 100) / 100);
            const int reach = static_cast<int>(r);
            for (int y = std::max(0, cy - reach); y <= std::min(f.height - 1, cy + reach); ++y) {
                auto* row = xy.ptr<cv::Point2f>(y);
                for (int x = std::max(0, cx - reach); x <= std::min(f.width - 1, cx + reach); ++x) {
                    const double dx = x - cx, dy = y - cy, p2 = (dx * dx + dy * dy) / (r * r);
                    if (p2 >= 1) continue;
                    const double m = reachOut * (1 + 0.5 * p2);
                    row[x] = At(cx - dx * m, cy - dy * m);
                }
            }
        }
    });
}

} // namespace morvane::imaging
