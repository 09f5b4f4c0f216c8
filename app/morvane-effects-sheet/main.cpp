// Renders one picture through every effect into a labelled grid, so that anyone can see at a glance
// what each effect does:  morvane-effects-sheet [--cell WIDTH] [--columns N] IN.png OUT.png
//
// Each effect runs at its default values; where those leave the picture as it was (a twist of 0, a
// brightness of 0), a value that shows the effect is used instead, and the label gives the token.

#include "Effect_Chain.h"
#include "Effects_Mods.h"

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QTextStream>

#include <map>

using namespace morvane;

namespace {

// Values that show an effect whose defaults change nothing.
const std::map<QString, QString> kShowValues = {
    {"StretchHistogram", "StretchHistogram:10"},
    {"ReduceColors", "ReduceColors:220"},
    {"BackDropRemoval", "BackDropRemoval:90:16777215:0"},
    {"BackDropRemovalEx", "BackDropRemovalEx:90:16777215:0"},
    {"Tone", "Tone:180"},
    {"Shift", "Shift:30"},
    {"Twirl", "Twirl:60"},
    {"Swirl", "Swirl:150"},
    {"Waves", "Waves:10:1:0"},
    {"DetectBorders", "DetectBorders:40:16777215:0"},
    {"Saturation", "Saturation:160"},
    {"AdvancedBlur", "AdvancedBlur:6:1:25"},
    {"MotionBlur", "MotionBlur:30:15"},
    {"ColorBalance", "ColorBalance:90:0:-90"},
    {"Fragment", "Fragment:12"},
    {"FarBlur", "FarBlur:20"},
    {"RadialBlur", "RadialBlur:12"},
    {"ZoomBlur", "ZoomBlur:80"},
    {"Fog", "Fog:90"},
    {"CircularWaves", "CircularWaves:8:8"},
    {"CircularWavesEx", "CircularWavesEx:8:8"},
    {"OilPaint", "OilPaint:150:0"},
    {"Cilindrical", "Cilindrical:20"},
    {"UnsharpMask", "UnsharpMask:12"},
    {"BlockWaves", "BlockWaves:10:6"},
    {"TwirlEx", "TwirlEx:200:0"},
    {"Metal", "Metal:40:4"},
    {"Brightness", "Brightness:70"},
    {"Contrast", "Contrast:170"},
    {"Gamma", "Gamma:60"},
    {"Color Filter", "Color Filter:120"},
};

QImage Apply(const QImage& picture, const QString& token) {
    QImage out = picture.copy();
    imaging::Run_EffectChain(
        imaging::Frame{out.bits(), out.width(), out.height(), static_cast<int>(out.bytesPerLine())},
        token.toStdString(), 1);
    return out;
}

int Usage() {
    QTextStream(stderr) << "Usage: morvane-effects-sheet [--cell WIDTH] [--columns N] IN.png OUT.png\n";
    return 2;
}

} // namespace

int main(int argc, char* argv[]) {
    // Text needs a platform; without a display the offscreen one serves.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    int cell = 240, columns = 6;
    const auto option = [&](const QString& flag, int& target, int lo, int hi) {
        const qsizetype i = args.indexOf(flag);
        if (i < 0) return true;
        bool ok = false;
        target = i + 1 < args.size() ? args.at(i + 1).toInt(&ok) : 0;
        args.remove(i, std::min<qsizetype>(2, args.size() - i));
        return ok && target >= lo && target <= hi;
    };
    if (!option(QStringLiteral("--cell"), cell, 16, 4096) ||
        !option(QStringLiteral("--columns"), columns, 1, 64))
        return Usage();
    if (args.size() != 2) return Usage();

    QImage source(args.at(0));
    if (source.isNull()) {
        QTextStream(stderr) << "morvane-effects-sheet: cannot read a picture from " << args.at(0) << '\n';
        return 1;
    }
    // ARGB32 is BGRA in memory on this platform: the effects' own layout.
    const QImage picture =
        source.scaledToWidth(std::min(cell, static_cast<int>(source.width())), Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_ARGB32);

    QList<QPair<QString, QImage>> cells = {{QStringLiteral("Original"), picture}};
    for (const std::string_view name : imaging::ChainEffectNames()) {
        const QString effect = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
        // Sizes in pixels are given for the reference width, Mirror's position too.
        QString token = DefaultEffectToken(effect, imaging::kReferenceWidth);
        QImage result = Apply(picture, token);
        if (result == picture && kShowValues.count(effect)) {
            token = kShowValues.at(effect);
            result = Apply(picture, token);
        }
        cells.append({token, result});
    }

    const int labelHeight = 22, gap = 6;
    const int cw = picture.width() + gap, ch = picture.height() + labelHeight + gap;
    const int rows = static_cast<int>((cells.size() + columns - 1) / columns);
    QImage sheet(columns * cw + gap, rows * ch + gap, QImage::Format_RGB32);
    sheet.fill(QColor(32, 32, 36));
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(13);
    painter.setFont(font);
    painter.setPen(QColor(230, 230, 230));
    for (int i = 0; i < cells.size(); ++i) {
        const int x = gap + (i % columns) * cw, y = gap + (i / columns) * ch;
        painter.drawImage(x, y, cells.at(i).second);
        painter.drawText(QRect(x, y + picture.height(), picture.width(), labelHeight), Qt::AlignCenter,
                         cells.at(i).first);
    }
    painter.end();
    if (!sheet.save(args.at(1), nullptr, 0)) { // for PNG the strongest compression
        QTextStream(stderr) << "morvane-effects-sheet: cannot write " << args.at(1) << '\n';
        return 1;
    }
    return 0;
}
