// Run_EffectChain: an effect list ("Brightness:-40,Mosaic:5,") applied to one BGRA frame in place, in
// token order. Pure: any thread may run it, each on its own frame.
#pragma once

#include "Image_Frame.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::imaging {

struct ChainResult {
    bool complete = true;             // false: a bad number ended the chain; the frame keeps what was done
    std::vector<std::string> unknown; // names passed over, in list order
    std::string badToken;             // the token whose number was bad
    std::vector<std::string> failed;  // effects that could not run on this frame, with the reason
};

// `seed` feeds the noise-like effects: the same frame with the same seed gives the same result. An
// invalid frame (Frame{}) checks the list only: the result tells what a run would meet.
ChainResult Run_EffectChain(const Frame& frame, std::string_view list, std::uint32_t seed = 0);

// A value of a token as the chain reads it ("5", "-40", " 7 ", "2.5"): rounded to the nearest whole
// number, ties to even; nothing for text that is no number or does not fit 32 bits.
std::optional<long> EffectValue(std::string_view text);

// Every name the chain knows, in the order of its table.
const std::vector<std::string_view>& ChainEffectNames();

} // namespace morvane::imaging
