#include "Aspect_Text.h"

#include "CheckedMath.h"

#include "mMain.h"

#include <array>
#include <cmath>
#include <utility>

namespace morvane {

namespace {

double roundTwoDecimals(double value) {
    const double scaled = value * 100.0;
    if (!std::isfinite(scaled)) throw RunTimeError("overflow");
    return Round_HalfEven(scaled) / 100.0;
}

} // namespace

QString Aspect_Ratio(std::int32_t width, std::int32_t height) {
    try {
        const double ratio = roundTwoDecimals(divChecked(width, height));
        return Format_Double(ratio).replace(QLatin1Char(','), QLatin1Char('.'));
    } catch (const RunTimeError&) {
        return QStringLiteral("1.1");
    }
}

QString Aspect_Text(std::int32_t width, std::int32_t height, std::int32_t numerator, std::int32_t denominator,
                    double ratio) {
    // The 2:1 row reads "1.41" on purpose; it pairs with the label table.
    static const std::array<std::pair<std::pair<int, int>, const char*>, 6> byFraction = {{
        {{5, 4}, "1.25"},
        {{4, 3}, "1.33"},
        {{2, 1}, "1.41"},
        {{3, 2}, "1.50"},
        {{5, 3}, "1.66"},
        {{16, 9}, "1.78"},
    }};
    static const std::array<std::pair<double, const char*>, 13> byRatio = {{
        {1.17, "1.17"},
        {1.25, "1.25"},
        {1.33, "1.33"},
        {1.37, "1.37"},
        {1.41, "1.41"},
        {1.5, "1.50"},
        {1.66, "1.66"},
        {1.77, "1.77"},
        {1.78, "1.78"},
        {1.85, "1.85"},
        {2.35, "2.35"},
        {2.39, "2.39"},
        {2.4, "2.4"},
    }};
    try {
        QString text;
        for (const auto& [fraction, name] : byFraction)
            if (fraction.first == numerator && fraction.second == denominator)
                text = QString::fromLatin1(name);
        const double rounded = roundTwoDecimals(ratio);
        for (const auto& [known, name] : byRatio)
            if (rounded == known) text = QString::fromLatin1(name);
        if (text.isEmpty()) text = Aspect_Ratio(width, height);
        return text;
    } catch (const RunTimeError&) {
        return QStringLiteral("1.1");
    }
}

} // namespace morvane
