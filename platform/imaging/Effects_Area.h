// Area effects: each output pixel depends on its neighbourhood (blurs, edges, reliefs, blocks). Every
// function works in place on a BGRA frame, clamps parameters outside their range, and does nothing to
// an invalid frame. Sizes in pixels are for a frame kReferenceWidth wide and scale with the width.
// Colours are R + 256 * G + 65536 * B. Effects that draw a new picture (edges, reliefs, stamps,
// sketches) keep the fourth byte; those that mix neighbours mix it too, and dots are drawn opaque, so
// an opaque frame stays opaque.
// The noise-like ones take a seed: the same frame and seed give the same result.
#pragma once

#include "Image_Frame.h"

#include <cstdint>

namespace morvane::imaging {

// A soft blur: Gaussian, sigma 1 pixel.
void Blur(const Frame& f);
// A softer blur than Blur: Gaussian, sigma 2 pixels.
void SoftnerBlur(const Frame& f);
// A blur that keeps edges: each colour moves towards the mean of its 5-pixel square, fully where the two
// are close and not at all where they are 2 * `threshold` (0..50) levels or more apart; 0 unchanged.
void SmartBlur(const Frame& f, int threshold);
// Radius 0..10 (0 unchanged); `gaussian` non-zero for a Gaussian of sigma radius / 2, else a box of
// radius `radius`; `keepEdges` mixes as SmartBlur does at threshold 20, so strong edges stay sharp.
void AdvancedBlur(const Frame& f, int radius, std::int16_t gaussian, bool keepEdges);
// Streaks along `angle` degrees (0..360, counter-clockwise from the right on screen), `distance`
// 1..50 pixels long: each pixel the mean of a line through it; 1 unchanged.
void MotionBlur(const Frame& f, double angle, int distance);
// A strong, far-reaching blur: Gaussian, sigma `amount` / 2 pixels (0..50, 0 unchanged).
void FarBlur(const Frame& f, int amount);
// A spin about the centre: the mean of the picture turned through `amount` degrees (0..30) centred
// on its own position; 0 unchanged.
void RadialBlur(const Frame& f, int amount);
// Streaks out from the centre: the mean of the picture enlarged about the centre from 1 to
// 1 + `amount` / 400 times (0..200); 0 unchanged.
void ZoomBlur(const Frame& f, int amount);
// Jagged edges smoothed: a light blur mixed in where brightness changes, fully (times `amount` / 100)
// at steps of 48 levels or more, not at all on flat areas; 0..100 (the program passes 50), 0 unchanged.
void AntiAlias(const Frame& f, int amount);
// The difference from a Gaussian blur of sigma 1 pixel added back 5 * `amount` times (0..0.7, 0
// unchanged).
void Sharpening(const Frame& f, float amount);
// The difference from a Gaussian blur of sigma `radius` pixels (1..30; the program passes 2) added
// back `amount` / 4 times (0..7.5); an amount or radius of 0 or less leaves the frame unchanged.
void UnsharpMask(const Frame& f, int radius, double amount);
// Edges drawn dark on white: grey, darker by (strength + 1) / 2 times the brightness contrast across
// lines `width` pixels wide; strength 0..6, line width 1..3. A flat frame comes out white.
void FindEdges(const Frame& f, int strength, int width);
// Glowing Edges: on black, each edge in the colour of its brighter side, brightness (strength + 1) / 2
// times the contrast across it, with a soft glow; strength 0..6, line width 1..3.
void Neon(const Frame& f, int strength, int width);
// A grey relief lit from the top left: mid grey (128) where flat, a step of H levels raised or sunk by
// `depth` * H; depth 0..2.55 (0 plain mid grey).
void Emboss(const Frame& f, float depth);
// The picture with a relief lit from the top left added to its colours; flat areas unchanged.
void Relief(const Frame& f);
// A black and white rubber stamp: the smoothed brightness black below 2 * `threshold` (0..128),
// white above.
void Stamp(const Frame& f, int threshold);
// A rough grey stone: the picture's shapes roughened by a fixed texture and lit from the top left;
// `depth` 0..10 is the height of the relief (0 flat stone).
void Rock(const Frame& f, int depth);
// A raised bevel around the frame's border, 2 * `depth` pixels wide (1..10): the top and left mixed
// half-way to white, the bottom and right half-way to black, with mitred corners.
void Make3DEffect(const Frame& f, int depth);
// Flat brush strokes (Kuwahara's filter): each pixel takes the mean colour of the calmest of the four
// squares of side `radius` + 1 pixels (0..5, 0 unchanged) that have it at a corner. `levels` 2..255
// then limits each channel to that many levels; 0 (the default) leaves the colours as they come.
void OilPaint(const Frame& f, int radius, int levels);
// Square blocks of `size` (0..50) pixels from the top left, each of its mean colour (the blocks cut by
// the right and bottom edges too); 0 and 1 unchanged.
void Mosaic(const Frame& f, int size);
// Four copies offset diagonally by `offset` (0..50) pixels each way and averaged; 0 unchanged.
void Fragment(const Frame& f, int offset);
// Each pixel replaced by one chosen at random up to 2 pixels away in each direction.
void Diffuse(const Frame& f, std::uint32_t seed);
// Frosted glass: pixels scattered up to 2 * `amount` pixels (0..3, 0 unchanged), then softened.
void FrostGlass(const Frame& f, int amount, std::uint32_t seed);
// Borders in the border colour on the background colour: pixels where the brightness changes by more
// than `threshold` levels (1..128); 0 (the default) leaves the frame unchanged.
void DetectBorders(const Frame& f, int threshold, std::uint32_t border, std::uint32_t background);
// A pencil sketch in ink on note paper: ink where a pixel is darker than its surroundings, more of it
// the higher `threshold` (0..255); the middle three are the program's constants (2, 20, 1: grain size
// 1..10 pixels, paper relief 0..100, line width 1..5). The paper's grain is the same on every frame.
void NotePaper(const Frame& f, int threshold, int grain, int texture, int lineWidth, std::uint32_t paper,
               std::uint32_t ink);
// Round dots `size` (2..100) pixels across in the colour, scattered at random over a twentieth of the
// picture.
void RandomicalPoints(const Frame& f, int size, std::uint32_t colour, std::uint32_t seed);

} // namespace morvane::imaging
