// Point effects: each output pixel depends on the same input pixel only (tables and per-pixel
// arithmetic). Every function works in place on a BGRA frame, clamps parameters outside their range,
// and does nothing to an invalid frame. Colours are R + 256 * G + 65536 * B.
#pragma once

#include "Image_Frame.h"

#include <cstdint>

namespace morvane::imaging {

// -255..255 added to every channel, saturating; 0 leaves the frame as it is.
void Brightness(const Frame& f, int amount);
// Contrast about mid grey (127.5), a factor per channel (0..2.55; NaN counts as 1): 0 flat grey,
// 1 leaves the frame as it is.
void Contrast(const Frame& f, float red, float green, float blue);
// -255 grey .. 0 unchanged .. 255 twice as vivid: each pixel's distance from its own luma grey
// scaled by 1 + amount / 255.
void Saturation(const Frame& f, int amount);
// v -> 255 * (v / 255) ^ (1 / gamma): 1 unchanged; above 1 lightens the middle tones, below darkens
// them. Clamped to 0.05..10; NaN counts as 1.
void Gamma(const Frame& f, float gamma);
// 0 unchanged .. 255 the full negative (255 - v); between, a straight blend towards it.
void Invert(const Frame& f, int amount);
// Grey by Rec. 601 luma (0.299 R + 0.587 G + 0.114 B), R = G = B; mode 0 is the only mode the
// program uses (others act as 0).
void GrayScale(const Frame& f, int mode);
// Warm brown monochrome: the luma toned brown, mid grey about (R 148, G 123, B 90), white cream.
void Sepia(const Frame& f);
// Hue turned by `degrees` (0..360; 0 and 360 leave the frame as it is): a rotation about the grey
// axis that keeps the mean of R, G and B. Red goes to yellow at 60, green at 120, blue at 240.
void Hue(const Frame& f, int degrees);
// -255..255 added to the red, green and blue channel, saturating; (0, 0, 0) leaves the frame as it is.
void ColorBalance(const Frame& f, int red, int green, int blue);
// Noise: grain of strength |amount| (-255..255; 0 unchanged); positive coloured grain (each channel its
// own), negative grey grain. Per pixel a triangular random in -|amount|..|amount|, added saturating;
// the same frame and seed give the same grain.
void ColorRandomize(const Frame& f, int amount, std::uint32_t seed);
// Channel values above the threshold (0..255) turned to their negative; -1 means 128, 255 leaves the
// frame as it is.
void Solarize(const Frame& f, int threshold);
// Each channel to 0 (below 128) or 255: the eight pure colours.
void ReduceTo8Colors(const Frame& f);
// Posterise: 0 unchanged .. 255 the fewest levels per channel (2). Levels fall geometrically from 256,
// about 22 at 128; the levels are spread evenly from 0 to 255.
void ReduceColors(const Frame& f, int amount);
// The 216 colours of the web palette: each channel to the nearest multiple of 51.
void WebColors(const Frame& f);
// The picture lit by a coloured light: each channel scaled by the light's colour, and the light
// screened in at a seventh of its strength to lift the shadows. `mode` picks the light (0 white,
// 1 candlelight, 2 cool daylight, 3 green, 4 warm white, the program's, 5 sunset; others clamped);
// `amount` 0 unchanged .. 255 full.
void AmbientLight(const Frame& f, int mode, int amount);
// Monochrome toned in a colour: the tone's colour scaled to each pixel's luma, so mid grey becomes the
// tone. `mode` picks it (0 sepia, 1 gold, 2 green, 3 rose, 4 cool blue, the program's, 5 violet; others
// clamped); `amount` blends from the picture (0, unchanged) to the toned one (255).
void Tone(const Frame& f, int mode, int amount);
// The middle tones moved by a power curve (0..255): 128 unchanged, lower darker (exponent 2.5 at 0),
// higher lighter (0.4 at 255); black and white stay.
void MediumTones(const Frame& f, int level);
// Levels stretched to the full range in the channels of `channels` (bits 1 blue, 2 green, 4 red; 0
// unchanged), ignoring `clipPercent` (0..20) of the darkest and of the lightest pixels. A channel of
// a single level stays as it is.
void StretchHistogram(const Frame& f, int channels, double clipPercent);
// 0 unchanged .. 127 a milky haze: blended towards a slightly cool light grey, half way at 127.
void Fog(const Frame& f, int amount);
// Polished metal: luma folded through a cosine wave and coloured along the metal's shadow, body and
// highlight colours. kind 1 metal (grey), 2 gold, 3 ice (blue), others clamped; `level` (0..255) sets
// the wave's frequency (1 to 4 cycles from black to white), `shift` (0..255) its phase (a whole cycle).
void Metallic(const Frame& f, int level, int shift, int kind);
// Pixels within `tolerance` (0..255, the largest difference of any channel) of the backdrop colour
// replaced by the replacement colour; the fourth byte is kept.
void BackDropRemoval(const Frame& f, std::uint32_t backdrop, std::uint32_t replacement, int tolerance);
// The same with a soft edge: pixels up to `a` levels further than the tolerance are blended, less the
// further they are. The program passes (-1, -1, -1, 0): a negative `a` picks the default edge, a quarter
// of the tolerance but at least 8; b, c and d have no effect.
void BackDropRemovalEx(const Frame& f, std::uint32_t backdrop, std::uint32_t replacement, int tolerance,
                       int a, int b, int c, int d);

} // namespace morvane::imaging
