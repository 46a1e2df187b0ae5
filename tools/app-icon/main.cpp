// brimwatch-app-icon DRAWING.svg ICON.icns: the drawing in the sizes that macOS asks for, in one
// file.
// brimwatch-app-icon DRAWING.svg PICTURE.png SIDE: the drawing as one picture, SIDE pixels wide and
// high.
//
// An icns file is a header, then for each picture four letters, its length with these eight bytes,
// and the picture as a PNG file; numbers are big-endian.

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>

#include <array>
#include <cstdio>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Picture {
    const char *letters;
    int side;
};

// 16 to 512 points, each for screens of one and two pixels a point. 16 and 32 points have only the
// second, which the system makes the first from.
constexpr std::array pictures{
    Picture{.letters = "ic11", .side = 32},
    Picture{.letters = "ic12", .side = 64},
    Picture{.letters = "ic07", .side = 128},
    Picture{.letters = "ic13", .side = 256},
    Picture{.letters = "ic08", .side = 256},
    Picture{.letters = "ic14", .side = 512},
    Picture{.letters = "ic09", .side = 512},
    Picture{.letters = "ic10", .side = 1024},
};

constexpr qsizetype headSize = 8;

QByteArray png(QSvgRenderer &drawing, int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        drawing.render(&painter);
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        return {};
    return buffer.data();
}

void append(QByteArray &bytes, const char *letters, const QByteArray &content)
{
    bytes.append(letters);
    QDataStream(&bytes, QIODevice::Append) << static_cast<quint32>(content.size() + headSize);
    bytes.append(content);
}

QByteArray icns(QSvgRenderer &drawing)
{
    QByteArray content;
    for (const Picture &picture : pictures) {
        const QByteArray encoded = png(drawing, picture.side);
        if (encoded.isEmpty())
            return {};
        append(content, picture.letters, encoded);
    }
    QByteArray icon;
    append(icon, "icns", content);
    return icon;
}

/// A picture's side in pixels; absent when the text is not one.
std::optional<int> sideOf(const char *text)
{
    constexpr int largest = 4096;
    bool isNumber = false;
    const int side = QByteArray(text).toInt(&isNumber);
    return isNumber && side > 0 && side <= largest ? std::optional(side) : std::nullopt;
}

int wrongUsage()
{
    std::fputs("Usage: brimwatch-app-icon DRAWING.svg ICON.icns\n"
               "       brimwatch-app-icon DRAWING.svg PICTURE.png SIDE\n",
        stderr);
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    constexpr int withSide = 4;
    if (argc != withSide - 1 && argc != withSide)
        return wrongUsage();
    const auto side = argc == withSide ? sideOf(argv[3]) : std::nullopt;
    if (argc == withSide && !side)
        return wrongUsage();
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(
            stderr, "brimwatch-app-icon: %s: %s\n", argv[1], qUtf8Printable(file.errorString()));
        return 1;
    }
    QSvgRenderer drawing(file.readAll());
    if (!drawing.isValid()) {
        std::fprintf(stderr, "brimwatch-app-icon: %s is no drawing\n", argv[1]);
        return 1;
    }
    const QByteArray icon = side ? png(drawing, *side) : icns(drawing);
    if (icon.isEmpty()) {
        std::fputs("brimwatch-app-icon: a picture cannot be written as PNG\n", stderr);
        return 1;
    }
    QSaveFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly) || out.write(icon) != icon.size() || !out.commit()) {
        std::fprintf(
            stderr, "brimwatch-app-icon: %s: %s\n", argv[2], qUtf8Printable(out.errorString()));
        return 1;
    }
    return 0;
}
