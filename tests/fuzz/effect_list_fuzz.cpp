// Effect lists as a user's stored file or a terminal may give them: the chain over a small frame with
// padded rows, and the list editing over the same text. The first three bytes pick the frame's width,
// height and row padding; the rest is the text, and a token after a NUL byte for the list editing.
#include "Effect_Chain.h"
#include "Effects_Mods.h"
#include "FuzzSupport.h"

#include <string_view>
#include <vector>

using namespace morvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const int width = 1 + data[0] % 48, height = 1 + data[1] % 32, stride = width * 4 + (data[2] % 4) * 4;
    const std::string_view rest(reinterpret_cast<const char*>(data + 3), size - 3);
    const std::string_view list = rest.substr(0, rest.find('\0'));

    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(stride) * height);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 31);
    const std::vector<std::uint8_t> before = bytes;
    imaging::Run_EffectChain({bytes.data(), width, height, stride}, list, data[0]);
    for (int y = 0; y < height; ++y) // the bytes past each row's pixels belong to someone else
        for (int i = width * 4; i < stride; ++i)
            fuzz::require(bytes[static_cast<std::size_t>(y) * stride + i] ==
                          before[static_cast<std::size_t>(y) * stride + i]);

    if (list.size() < rest.size()) {
        const QString token = QString::fromUtf8(rest.substr(list.size() + 1));
        const QString text = QString::fromUtf8(list);
        const QString updated = Update_EffectsText(text, token);
        // A removal never adds text; an addition keeps the token, unless it is blank (blank elements
        // go when the list is rebuilt).
        if (token.startsWith(QLatin1Char('-')))
            fuzz::require(updated.size() <= text.size() + 1);
        else if (!token.trimmed().isEmpty())
            fuzz::require(updated.contains(token));
    }
    return 0;
}
