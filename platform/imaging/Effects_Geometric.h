// Geometric effects: each output pixel is taken from another place of the input (mirrors, twists,
// lenses, waves). Every function works in place on a BGRA frame, clamps parameters outside their
// range, and does nothing to an invalid frame. Maps for cv::remap are cached per thread, per frame
// size and parameters, so a stream of frames pays for them once. Sizes in pixels are for a frame
// kReferenceWidth wide and scale with the width.
#pragma once

#include "Image_Frame.h"

#include <cstdint>

namespace morvane::imaging {

// Mirrors left-right when `horizontal`, top-bottom when `vertical`. The scale sizes are the frame's
// own and only checked: a call with either not positive does nothing.
void Flip(const Frame& f, int scaleWidth, int scaleHeight, bool horizontal, bool vertical);
// A swirl about the centre, -100..100 (sign the direction; 0 unchanged): the picture turns by
// amount / 100 of a full turn times (1 - distance / half diagonal)^2, so most at the centre and not
// at all at the corners.
void Twirl(const Frame& f, int amount);
// A twist of `angle` degrees (-360..360; 0 unchanged) at the centre, fading like Twirl's to nothing
// at `radius` (-360..360, its size a percentage of the half diagonal; 0 the whole frame).
void TwirlEx(const Frame& f, double angle, double radius);
// A tighter swirl whose turn grows towards the centre, -255..255 (0 unchanged): up to three turns
// at 255, within the circle touching the shorter sides, fading as (1 - distance / its radius)^3.
void Swirl(const Frame& f, int amount);
// A fish-eye lens bulge over the whole frame: the middle magnified twice, the corners in place.
void FishEye(const Frame& f);
// A lens in the ellipse touching the frame's sides, -255..255 (0 unchanged): positive bulges (the
// middle up to four times larger), negative pinches (up to about half the size); outside it nothing
// moves.
void FishEyeEx(const Frame& f, double amount);
// Sine waves of `amplitude` (0..25) pixels; `horizontal` non-zero moves rows sideways, else columns
// up and down; the waves are `wavelength` (0..25) times 20 pixels long (0 the default, 100).
// Amplitude 0 unchanged.
void Waves(const Frame& f, int amplitude, int horizontal, std::uint8_t wavelength);
// Ripples from the centre: each point moved along its ray by up to `amplitude` (0..20; 0 unchanged)
// pixels, rings `wavelength` (0..20) times 10 pixels apart (0 the default, 40).
void CircularWaves(const Frame& f, int amplitude, int wavelength);
// The same ripples, fading out towards the corners.
void CircularWavesEx(const Frame& f, int amplitude, int wavelength);
// Square blocks 8 + 4 * `blockSize` (0..10) pixels wide, each moved whole by a wave 160 pixels long:
// sideways by its row, up and down by its column, up to `amplitude` (0..20; 0 unchanged) pixels.
// `mode` 1 is the only mode; others act as it.
void BlockWaves(const Frame& f, int amplitude, int blockSize, int mode);
// Mode 0: rectangular to polar, the top edge gathered at the centre, the bottom edge round the rim of
// the ellipse touching the sides, left to right clockwise from the top. Mode 1: the reverse. Other
// modes are clamped to these.
void PolarCoordinates(const Frame& f, int mode);
// Wrapped around a cylinder seen from the front, -30..30 (0 unchanged): positive the outside, the
// middle widened and the sides squeezed (30: half the cylinder in view); negative the inside.
void Cilindrical(const Frame& f, double amount);
// The right fifth of the page rolled up towards the viewer into a shaded roll; black where the page
// has gone.
void Roll(const Frame& f);
// Drips running down: columns stretched downwards by a gentle sag and rounded drips, the top row in
// place. The seed places the drips.
void Melt(const Frame& f, std::uint32_t seed);
// The middle enlarged and a ring about it pinched, within the ellipse touching the frame's sides,
// without a visible rim.
void Caricature(const Frame& f);
// The four quarters each twisted about their own centre, mirrored senses so that the picture turns
// inward to the centre.
void FourCorners(const Frame& f);
// Mirror: the part left of `x` (reference pixels) mirrored onto the right, bouncing back and forth
// if the right part is the wider. x <= 0 or at least the width: unchanged.
void Canvas(const Frame& f, int x);
// Tiles of `width` x `height` (50..100 reference pixels), each trimmed by `gap` (0..25; 8 in the
// program's call; 0 unchanged) and moved by up to half of it, on black.
void Tile(const Frame& f, int width, int height, int gap);
// Bands of rows (1..4 reference rows high) shifted sideways at random by up to `amount` (0..255)
// pixels, what leaves one side coming in at the other; 0 unchanged.
void Shift(const Frame& f, int amount, std::uint32_t seed);
// Drops of water on the glass, each showing its surroundings upside down: `count` 1..100 drops,
// `size` 1..100 (radius up to 4 + 0.6 * size pixels), `depth` 1..100 (how far round they see).
void RainDrops(const Frame& f, int count, int size, int depth, std::uint32_t seed);

} // namespace morvane::imaging
