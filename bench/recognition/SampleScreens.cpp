#include "bench/recognition/SampleScreens.h"

#include "bench/recognition/SampleTexts.h"
#include "bench/recognition/SampleWindows.h"

#include <QBuffer>
#include <QFontMetrics>
#include <cmath>

namespace {

Sample paragraphs(QRandomGenerator &random, bool wide, const Theme &theme, int low, int high)
{
    SamplePage page(random, QSize(520 + static_cast<int>(random.bounded(300U)), 240), theme.paper);
    const int pixels = page.between(low, high);
    const QFont font = sansFont(random, pixels, wide);
    const int step = static_cast<int>(pixels * (1.25 + random.bounded(0.6)));
    int y = page.between(4, 24);
    const int x = page.between(4, 40);
    while (y + step < page.size().height()) {
        QString words = page.any(sentences);
        while (QFontMetrics(font).horizontalAdvance(words) > page.size().width() - x - 4)
            words.truncate(words.lastIndexOf(u' '));
        page.text({x, y}, words, font, theme.ink);
        y += page.chance(15) ? 2 * step : step;
    }
    return page.finished({});
}

Sample lightTiny(QRandomGenerator &random, bool wide)
{
    return paragraphs(random, wide, lightTheme(random), 9, 11);
}
Sample lightUsual(QRandomGenerator &random, bool wide)
{
    return paragraphs(random, wide, lightTheme(random), 12, 14);
}
Sample lightLarge(QRandomGenerator &random, bool wide)
{
    return paragraphs(random, wide, lightTheme(random), 18, 24);
}
Sample darkTiny(QRandomGenerator &random, bool wide)
{
    return paragraphs(random, wide, darkTheme(random), 9, 11);
}
Sample darkUsual(QRandomGenerator &random, bool wide)
{
    return paragraphs(random, wide, darkTheme(random), 12, 14);
}

// Each channel sees the picture a third of a pixel beside the next one, as on flat panels.
Sample subpixel(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? lightTheme(random) : darkTheme(random);
    SamplePage page(random, QSize(600 * 3, 220), theme.paper);
    page.paint().scale(3, 1);
    const int pixels = page.between(10, 13);
    const QFont font = sansFont(random, pixels, wide);
    for (int y = 8; y + 2 * pixels < 220; y += pixels * 3 / 2)
        page.text({12, y}, page.any(sentences), font, theme.ink);
    Sample sample = page.finished({});
    const QImage fine = sample.image;
    QImage result(600, 220, QImage::Format_RGB32);
    const auto mixed = [&fine](int x, int y, int shift) {
        int sum = 0;
        for (int tap = -2; tap <= 2; ++tap) {
            const QRgb colour = fine.pixel(std::clamp(x + tap, 0, fine.width() - 1), y);
            sum += static_cast<int>((colour >> shift) & 0xff) * (3 - std::abs(tap));
        }
        return sum / 9;
    };
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x)
            result.setPixel(x, y, qRgb(mixed(3 * x, y, 16), mixed(3 * x + 1, y, 8), mixed(3 * x + 2, y, 0)));
    }
    sample.image = result;
    return sample;
}

Sample doubleScale(QRandomGenerator &random, bool wide)
{
    const bool dark = random.bounded(2U) == 0;
    return paragraphs(random, wide, dark ? darkTheme(random) : lightTheme(random), 22, 32);
}

Sample jpegScreen(QRandomGenerator &random, bool wide)
{
    const bool dark = random.bounded(2U) == 0;
    Sample sample = paragraphs(random, wide, dark ? darkTheme(random) : lightTheme(random), 12, 16);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    sample.image.save(&buffer, "JPEG", static_cast<int>((wide ? 60 : 75) + random.bounded(18U)));
    sample.image = QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32);
    return sample;
}

Sample code(QRandomGenerator &random, bool wide, const Theme &theme)
{
    SamplePage page(random, QSize(640, 260), theme.paper);
    const int pixels = page.between(12, 15);
    const QFont font = monoFont(random, pixels, wide);
    const double advance = QFontMetricsF(font).horizontalAdvance(u'x');
    const int step = pixels * page.between(12, 16) / 10;
    const bool numbered = page.chance(30);
    int number = page.between(1, 80);
    const QColor colours[] = {theme.ink, theme.accent, theme.ink, QColor("#6a9955"), QColor("#c9762f")};
    for (int y = 8; y + step < 260; y += step) {
        if (numbered)
            page.text({8, y}, QString::number(number++), font, QColor("#858585"));
        double x = (numbered ? 8 + 5 * advance : 10) + page.below(4) * 4 * advance;
        for (const QString &token : page.any(codeLines).split(u' ')) {
            page.text({static_cast<int>(std::lround(x)), y}, token, font, colours[page.below(5)]);
            x += static_cast<double>(token.size() + 1) * advance;
        }
    }
    return page.finished({});
}

Sample codeLight(QRandomGenerator &random, bool wide)
{
    return code(random, wide, lightTheme(random));
}
Sample codeDark(QRandomGenerator &random, bool wide)
{
    return code(random, wide, darkTheme(random));
}

Sample terminal(QRandomGenerator &random, bool wide)
{
    const Theme theme = darkTheme(random);
    SamplePage page(random, QSize(640, 280), theme.paper);
    QFont font = monoFont(random, page.between(11, 14), wide);
    if (page.chance(40))
        font.setStyleStrategy(QFont::NoAntialias);
    const QFontMetrics metrics(font);
    for (int y = 4; y + metrics.height() < 280; y += metrics.height()) {
        const QString line = page.chance(30)
                                 ? QStringLiteral("utente@casa:~/lavoro$ ") + page.any(codeLines)
                                 : QStringLiteral("-rw-r--r-- 1 utente utente %1 nov %2 %3:%4 %5_%6.txt")
                                       .arg(page.between(1000, 99999))
                                       .arg(page.between(1, 30))
                                       .arg(page.between(10, 23))
                                       .arg(page.between(10, 59))
                                       .arg(page.any(places).toLower())
                                       .arg(page.below(30));
        page.text({4, y}, line, font, page.chance(20) ? theme.accent : theme.ink);
    }
    return page.finished({});
}

Sample heading(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(3U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(1000, 400), theme.paper);
    QFont font = sansFont(random, page.between(52, 120), wide);
    font.setBold(page.chance(50));
    QString words = page.any(places) + u' ' + page.any(labels);
    while (QFontMetrics(font).horizontalAdvance(words) > 960)
        font.setPixelSize(font.pixelSize() * 9 / 10);
    const int bottom = page.text({20, 20}, words, font, page.chance(30) ? theme.accent : theme.ink).bottom();
    font.setBold(false);
    font.setPixelSize(18);
    for (int line = 0; line < 4; ++line)
        page.text({20, bottom + 20 + 28 * line}, page.any(sentences), font, theme.ink);
    return page.finished({});
}

Sample wordCrop(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    const int pixels = 11 + static_cast<int>(random.bounded(5U));
    const QFont font = sansFont(random, pixels, wide);
    const QString word = QString::fromUtf16(labels[random.bounded(static_cast<quint32>(labels.size()))]);
    const QFontMetrics metrics(font);
    SamplePage page(random, QSize(metrics.horizontalAdvance(word) + 4, metrics.height()), theme.paper);
    page.text({2, 0}, word, font, theme.ink);
    return page.finished({});
}

Sample bigMargins(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(1600, 900), theme.paper);
    const QFont font = sansFont(random, page.between(12, 18), wide);
    page.text({page.between(100, 900), page.between(100, 800)}, page.any(sentences), font, theme.ink);
    return page.finished({});
}

Sample columns(QRandomGenerator &random, bool wide)
{
    const Theme theme = lightTheme(random);
    SamplePage page(random, QSize(860, 300), theme.paper);
    const QFont font = sansFont(random, page.between(12, 15), wide);
    const int step = font.pixelSize() * page.between(13, 18) / 10;
    for (int y = 10; y + step < 300; y += step) {
        for (int column = 0; column < 2; ++column) {
            QString words = page.any(sentences);
            while (QFontMetrics(font).horizontalAdvance(words) > 390)
                words.truncate(words.lastIndexOf(u' '));
            page.text({14 + column * 425, y}, words, font, theme.ink);
        }
    }
    return page.finished({});
}

} // namespace

const std::vector<SampleKind> &screenKinds()
{
    static const std::vector<SampleKind> kinds{
        {"light 9-11", 8, lightTiny},
        {"light 12-14", 8, lightUsual},
        {"light 18-24", 6, lightLarge},
        {"dark 9-11", 8, darkTiny},
        {"dark 12-14", 8, darkUsual},
        {"subpixel 10-13", 8, subpixel},
        {"double scale", 6, doubleScale},
        {"jpeg", 8, jpegScreen},
        {"table", 10, table},
        {"buttons", 10, buttons},
        {"code light", 8, codeLight},
        {"code dark", 8, codeDark},
        {"terminal", 8, terminal},
        {"web page", 8, webPage},
        {"heading", 10, heading},
        {"selected rows", 8, selectedRows},
        {"one word", 16, wordCrop},
        {"big margins", 4, bigMargins},
        {"columns", 6, columns},
        {"desktop 4K", 1, largeDesktop},
    };
    return kinds;
}
