#include "bench/recognition/SampleScreens.h"

#include "bench/recognition/SampleTexts.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QPainterPath>
#include <cmath>

namespace {

struct Theme {
    QColor paper;
    QColor ink;
    QColor accent;
    QColor faint; // rules and frames
};

Theme lightTheme(QRandomGenerator &random)
{
    static const Theme themes[] = {{"#ffffff", "#1a1a1a", "#1a73e8", "#d0d0d0"},
                                   {"#f6f5f4", "#2e3436", "#3584e4", "#cdc7c2"},
                                   {"#fafafa", "#333333", "#c0392b", "#e0e0e0"},
                                   {"#fdf6e3", "#586e75", "#268bd2", "#eee8d5"},
                                   {"#eff0f1", "#232629", "#16a085", "#bcbebf"}};
    return themes[random.bounded(5U)];
}

Theme darkTheme(QRandomGenerator &random)
{
    static const Theme themes[] = {{"#1e1e1e", "#d4d4d4", "#569cd6", "#3c3c3c"},
                                   {"#2d2d2d", "#eeeeec", "#3584e4", "#474747"},
                                   {"#000000", "#e0e0e0", "#bb86fc", "#333333"},
                                   {"#282a36", "#f8f8f2", "#ff79c6", "#44475a"},
                                   {"#002b36", "#93a1a1", "#2aa198", "#073642"}};
    return themes[random.bounded(5U)];
}

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

Sample table(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(3U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(720, 330), theme.paper);
    const int pixels = page.between(11, 14);
    const QFont font = sansFont(random, pixels, wide);
    const int rowHeight = pixels * page.between(16, 24) / 10;
    const bool grid = page.chance(60);
    const bool zebra = page.chance(40);
    const int columns[] = {10, 190, 330, 450, 560};
    const int rows = 300 / rowHeight;
    for (int row = 0; row < rows; ++row) {
        const int y = 10 + row * rowHeight;
        if (zebra && row % 2 == 1)
            page.paint().fillRect(QRect(6, y, 704, rowHeight), theme.faint);
        const QString cells[] = {
            page.any(names), page.any(places), QString::number(page.below(5000)),
            QStringLiteral("€ %1,%2").arg(page.below(900)).arg(page.between(10, 99)),
            QStringLiteral("%1/%2/2026").arg(page.between(1, 28)).arg(page.between(1, 12))};
        for (int column = 0; column < 5; ++column)
            page.text({columns[column], y + (rowHeight - QFontMetrics(font).height()) / 2}, cells[column],
                      font, theme.ink);
        if (grid) {
            page.paint().setRenderHint(QPainter::Antialiasing, false);
            page.paint().setPen(theme.faint);
            page.paint().drawRect(6, y, 704, rowHeight);
            for (const int x : columns)
                page.paint().drawLine(x - 5, y, x - 5, y + rowHeight);
        }
    }
    return page.finished({});
}

void drawIcon(SamplePage &page, const QRect &box, const QColor &color)
{
    QPainter &painter = page.paint();
    painter.setPen(QPen(color, std::max(1.0, box.width() / 10.0)));
    painter.setBrush(Qt::NoBrush);
    const QRectF area = QRectF(box).adjusted(1, 1, -1, -1);
    switch (page.below(6)) {
    case 0:
        painter.drawEllipse(area.adjusted(0, 0, -area.width() / 3, -area.height() / 3));
        painter.drawLine(area.center() + QPointF(2, 2), area.bottomRight());
        break;
    case 1:
        painter.setBrush(color);
        painter.drawRoundedRect(area.adjusted(0, area.height() / 4, 0, 0), 2, 2);
        break;
    case 2:
        painter.drawRect(area);
        painter.drawLine(area.topLeft(), area.bottomRight());
        break;
    case 3:
        painter.drawEllipse(area);
        painter.drawLine(area.center(), QPointF(area.center().x(), area.top() + 3));
        painter.drawLine(area.center(), QPointF(area.right() - 3, area.center().y()));
        break;
    case 4:
        for (int i = 0; i < 3; ++i)
            painter.drawLine(QPointF(area.left(), area.top() + area.height() * (i + 0.5) / 3),
                             QPointF(area.right(), area.top() + area.height() * (i + 0.5) / 3));
        break;
    default: {
        QPainterPath path;
        path.moveTo(area.center().x(), area.top());
        path.lineTo(area.bottomRight());
        path.lineTo(area.bottomLeft());
        path.closeSubpath();
        painter.drawPath(path);
    }
    }
    painter.setBrush(Qt::NoBrush);
}

Sample buttons(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(640, 300), theme.paper);
    const int pixels = page.between(11, 15);
    const QFont font = sansFont(random, pixels, wide);
    const int iconSide = page.chance(70) ? 16 : 22;
    int x = 10;
    for (int i = 0; i < 5; ++i)
        x = page.text({x, 4}, page.any(labels), font, theme.ink).right() + pixels + 6;
    for (int row = 0; row < 5; ++row) {
        x = 12;
        const int y = 36 + row * 50;
        for (int i = 0; i < 3; ++i) {
            const QString label = page.any(labels);
            const bool icon = page.chance(60);
            const int width = QFontMetrics(font).horizontalAdvance(label) + 28 + (icon ? iconSide + 6 : 0);
            const QRect box(x, y, width, 32);
            const bool filled = page.chance(40);
            page.paint().setPen(filled ? theme.accent : theme.faint);
            page.paint().setBrush(filled ? QBrush(theme.accent) : QBrush(theme.paper));
            page.paint().drawRoundedRect(box, 5, 5);
            const QColor ink = filled ? QColor(Qt::white) : theme.ink;
            if (icon)
                drawIcon(page, QRect(x + 12, y + (32 - iconSide) / 2, iconSide, iconSide), ink);
            page.centred(box.adjusted(icon ? iconSide + 6 : 0, 0, 0, 0), label, font, ink);
            x += width + page.between(8, 40);
        }
    }
    return page.finished({});
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

Sample webPage(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(4U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(900, 520), theme.paper);
    page.paint().fillRect(QRect(0, 0, 900, 48), theme.accent);
    QFont font = sansFont(random, 16, wide);
    font.setBold(true);
    int x = page.text({24, 14}, page.any(names), font, Qt::white).right() + 60;
    font.setBold(false);
    font.setPixelSize(14);
    for (int i = 0; i < 4; ++i)
        x = page.text({x, 15}, page.any(labels), font, Qt::white).right() + 28;
    font.setPixelSize(page.between(28, 40));
    font.setBold(true);
    page.text({24, 70}, page.any(places) + QStringLiteral(" e dintorni"), font, theme.ink);
    font.setBold(false);
    font.setPixelSize(page.between(13, 16));
    const int step = font.pixelSize() * 3 / 2;
    for (int y = 140; y + step < 330; y += step) {
        QFont line = font;
        line.setUnderline(page.chance(25));
        line.setStrikeOut(!line.underline() && page.chance(6));
        page.text({24, y}, page.any(sentences), line, line.underline() ? theme.accent : theme.ink);
    }
    for (int card = 0; card < 3; ++card) {
        const QRect box(24 + card * 290, 350, 270, 140);
        page.paint().setPen(theme.faint);
        page.paint().setBrush(Qt::NoBrush);
        page.paint().drawRoundedRect(box, 8, 8);
    }
    for (int line = 0; line < 4; ++line) {
        for (int card = 0; card < 3; ++card) {
            QString words = page.any(sentences);
            while (QFontMetrics(font).horizontalAdvance(words) > 240)
                words.truncate(words.lastIndexOf(u' '));
            page.text({38 + card * 290, 364 + line * step}, words, font, theme.ink);
        }
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

Sample selectedRows(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(420, 300), theme.paper);
    const QFont font = sansFont(random, page.between(12, 15), wide);
    const QColor colours[] = {theme.accent, "#e01b24", "#2ec27e", "#9141ac", "#f5c211"};
    for (int row = 0; row < 9; ++row) {
        const QRect box(0, row * 32, 420, 32);
        QColor ink = theme.ink;
        if (page.chance(40)) {
            const int colour = page.below(5);
            page.paint().fillRect(box, colours[colour]);
            ink = colour == 4 ? Qt::black : Qt::white;
        }
        page.text({14, box.top() + (32 - QFontMetrics(font).height()) / 2},
                  page.any(labels) + QStringLiteral(": ") + page.any(places), font, ink);
    }
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

// Windows on a desktop of four times the usual area, side by side with lines at the same heights.
Sample largeDesktop(QRandomGenerator &random, bool wide)
{
    SamplePage page(random, QSize(3840, 2160), QColor("#30506e"));
    const int step = 24;
    struct Window {
        QRect box;
        Theme theme;
        QFont font;
    };
    for (int band = 0; band < 2; ++band) {
        std::vector<Window> windows;
        for (int i = 0; i < 4; ++i) {
            const QRect box(40 + i * 950, 60 + band * 1050, 900, 960);
            windows.push_back({box, page.chance(40) ? darkTheme(random) : lightTheme(random),
                               sansFont(random, page.between(12, 16), wide)});
            page.paint().fillRect(box, windows.back().theme.paper);
            page.paint().fillRect(QRect(box.left(), box.top(), box.width(), 36), windows.back().theme.faint);
        }
        for (int line = 0; line < 36; ++line) {
            for (const Window &window : windows) {
                if (line > 0 && page.chance(20))
                    continue;
                page.text({window.box.left() + 16, window.box.top() + 8 + line * step + (line > 0 ? 20 : 0)},
                          page.any(sentences), window.font, window.theme.ink);
            }
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
