#include "bench/recognition/SampleScreens.h"
#include "bench/recognition/SampleTexts.h"
#include "bench/recognition/SampleWindows.h"

#include <QFontMetrics>

// Pictures in the manner of certain programs: sheets, prompts, menus, shops, films.

namespace {

int middle(const QRect &box, const QFont &font)
{
    return box.top() + (box.height() - QFontMetrics(font).height()) / 2;
}

// A label hardly higher than its text; gives the place to go on at.
int pill(SamplePage &page, QPoint at, const QString &words, const QFont &font, const QColor &color)
{
    const QFontMetrics metrics(font);
    const QRect box(at, QSize(metrics.horizontalAdvance(words) + 16, metrics.height() + 2));
    page.paint().setPen(Qt::NoPen);
    page.paint().setBrush(color);
    page.paint().drawRoundedRect(box, page.chance(50) ? 0.5 * box.height() : 4, 0.5 * box.height());
    page.text({box.left() + 8, box.top() + 1}, words, font, Qt::white);
    return box.right() + 8;
}

// Rows with labels, below a header with a gradient.
Sample labelledRows(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(640, 330), theme.paper);
    const QFont font = sansFont(random, page.between(12, 15), wide);
    QFont small = font;
    small.setPixelSize(font.pixelSize() - 2);
    QLinearGradient header(0, 0, 0, 30);
    header.setColorAt(0, QColor("#5a6d8a"));
    header.setColorAt(1, QColor("#33425b"));
    page.paint().fillRect(QRect(0, 0, 640, 30), header);
    page.text({12, middle({0, 0, 640, 30}, font)}, page.any(labels), font, Qt::white);
    const QColor colours[] = {"#2da44e", "#8250df", "#d73a4a", "#0d6efd", "#b35900"};
    for (int y = 30; y + 30 <= 330; y += 30) {
        const int baseline = middle({0, y, 640, 30}, font);
        int x = page.text({12, baseline}, u'#' + QString::number(page.below(5000)) + u' ' + page.any(names),
                          font, theme.ink)
                    .right() +
                16;
        for (int label = page.between(1, 3); label > 0; --label)
            x = pill(page, {x, middle({0, y, 640, 30}, small)}, page.any(labels), small,
                     colours[page.below(5)]);
    }
    return page.finished({});
}

// Narrow cells between rules, with numbers of rows.
Sample sheet(QRandomGenerator &random, bool wide)
{
    SamplePage page(random, QSize(620, 330), Qt::white);
    const QFont font = sansFont(random, page.between(11, 13), wide);
    const int columns[] = {0, 28, 150, 235, 300, 400, 500};
    page.paint().setRenderHint(QPainter::Antialiasing, false);
    page.paint().fillRect(QRect(0, 0, 28, 330), QColor("#f0f0f0"));
    page.paint().setPen(QColor("#d0d0d0"));
    for (int y = 0; y < 330; y += 21)
        page.paint().drawLine(0, y, 500, y);
    for (const int x : columns)
        page.paint().drawLine(x, 0, x, 315);
    for (int row = 0; row < 15; ++row) {
        const QString cells[] = {
            QString::number(row + 1),
            page.any(labels),
            page.any(places),
            QString::number(page.below(500)),
            QStringLiteral("%1.%2,%3")
                .arg(page.between(1, 9))
                .arg(page.between(100, 999))
                .arg(page.between(10, 99)),
            QStringLiteral("2026-%1-%2").arg(page.between(10, 12)).arg(page.between(10, 28))};
        for (int column = 0; column < 6; ++column) {
            const QRect box(columns[column], row * 21, columns[column + 1] - columns[column], 21);
            const int width = QFontMetrics(font).horizontalAdvance(cells[column]);
            page.text({column < 3 ? box.left() + 6 : box.right() - 5 - width, middle(box, font)},
                      cells[column], font, Qt::black);
        }
    }
    return page.finished({});
}

// A shell whose prompt has coloured parts, and what is in no dictionary.
Sample prompt(QRandomGenerator &random, bool wide)
{
    const Theme theme = darkTheme(random);
    SamplePage page(random, QSize(680, 300), theme.paper);
    const QFont font = monoFont(random, page.between(12, 15), wide);
    const QFontMetrics metrics(font);
    const int cell = metrics.horizontalAdvance(u'x');
    const std::array output{u"https://www.example.com/shop?id=4821&lang=it",
                            u"~/Progetti/sito/index.html",
                            u"postgres://shop@db:5432/main",
                            u"giulia.neri@posta.example.it",
                            u"192.168.17.254 /var/lib/data.bin",
                            u"log.debug(\"miss: %s\", key)",
                            u"sha256:9f86d081884c7d65",
                            u"2026-03-14T09:26:53Z [warn] retry 3/5"};
    for (int y = 4; y + metrics.height() < 300; y += metrics.height() + 2) {
        int x = 6;
        if (page.chance(40)) {
            const std::pair<QString, QColor> parts[] = {{QStringLiteral("utente"), QColor("#3465a4")},
                                                        {QStringLiteral("~/sito"), QColor("#4e7a06")}};
            for (const auto &[words, color] : parts) {
                const int width = metrics.horizontalAdvance(words) + cell;
                page.paint().fillRect(QRect(x, y, width, metrics.height()), color);
                page.text({x + cell / 2, y}, words, font, Qt::white);
                x += width;
            }
            x += cell;
        }
        page.text({x, y}, page.any(output), font, page.chance(30) ? theme.accent : theme.ink);
    }
    return page.finished({});
}

// A menu: an icon before each entry, its keys far to the right, and small buttons with round frames.
Sample menu(QRandomGenerator &random, bool wide)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(340, 320), theme.paper);
    const QFont font = sansFont(random, page.between(12, 15), wide);
    const std::array keys{u"Ctrl+N", u"Ctrl+Shift+S", u"Alt+F4", u"Ctrl+P", u"Shift+F10"};
    for (int row = 0; row < 8; ++row) {
        const QRect box(0, 6 + row * 30, 340, 30);
        drawIcon(page, QRect(12, box.top() + 7, 16, 16), theme.ink);
        page.text({40, middle(box, font)}, page.any(labels), font, theme.ink);
        const QString key = page.any(keys);
        page.text({326 - QFontMetrics(font).horizontalAdvance(key), middle(box, font)}, key, font, theme.ink);
    }
    for (int x = 12; x < 230;) {
        const QString words = page.any(labels);
        const QRect box(x, 270, QFontMetrics(font).horizontalAdvance(words) + 20, 28);
        page.paint().setPen(theme.ink);
        page.paint().setBrush(Qt::NoBrush);
        page.paint().drawRoundedRect(box, 6, 6);
        page.centred(box, words, font, theme.ink);
        x = box.right() + 12;
    }
    return page.finished({});
}

// Cards of one colour around pictures, with a title and a price each.
Sample shop(QRandomGenerator &random, bool wide)
{
    const bool isDark = random.bounded(2U) == 0;
    SamplePage page(random, QSize(690, 460), isDark ? QColor("#20242b") : QColor("#fdf6e3"));
    const QFont font = sansFont(random, page.between(12, 15), wide);
    const QColor card = isDark ? "#2b303b" : "#ffffff";
    const QColor ink = isDark ? "#e6e6e6" : "#333333";
    for (int top = 10; top < 400; top += 225) {
        for (int left = 10; left < 600; left += 225) {
            page.paint().setPen(Qt::NoPen);
            page.paint().setBrush(card);
            page.paint().drawRoundedRect(QRect(left, top, 215, 215), 8, 8);
            page.paint().drawImage(QPoint(left + 8, top + 8), landscape(random, QSize(199, 130)));
        }
        for (int left = 10; left < 600; left += 225)
            page.text({left + 12, top + 148}, page.any(labels), font, ink);
        for (int left = 10; left < 600; left += 225)
            page.text({left + 12, top + 178},
                      QStringLiteral("%1,%2 €").arg(page.between(3, 90)).arg(page.between(10, 99)), font,
                      ink);
    }
    return page.finished({});
}

// A still of a film with its subtitle.
Sample subtitle(QRandomGenerator &random, bool wide)
{
    SamplePage page(random, QSize(900, 500), Qt::black);
    page.paint().drawImage(QPoint(0, 0), landscape(random, page.size()));
    QFont font = sansFont(random, page.between(22, 30), wide);
    QString words = page.any(sentences);
    while (QFontMetrics(font).horizontalAdvance(words) > 860)
        font.setPixelSize(font.pixelSize() - 1);
    const QPoint at((900 - QFontMetrics(font).horizontalAdvance(words)) / 2, 430);
    QPainter &painter = page.paint();
    painter.setFont(font);
    painter.setPen(Qt::black);
    for (const QPoint shift : {QPoint(-1, -1), QPoint(1, -1), QPoint(-1, 1), QPoint(1, 1)})
        painter.drawText(at + shift + QPoint(0, QFontMetrics(font).ascent()), words);
    page.text(at, words, font, page.chance(50) ? Qt::white : QColor("#ffeb3b"));
    return page.finished({});
}

Sample icons(QRandomGenerator &random, bool)
{
    const Theme theme = random.bounded(2U) == 0 ? darkTheme(random) : lightTheme(random);
    SamplePage page(random, QSize(500, 300), theme.paper);
    for (int y = 20; y < 260; y += 60) {
        for (int x = 20; x < 460; x += 60) {
            const int side = page.between(2, 6) * 8;
            drawIcon(page, QRect(x, y, side, side), page.chance(50) ? theme.ink : theme.accent);
        }
    }
    return page.finished({});
}

} // namespace

const std::vector<SampleKind> &programKinds()
{
    static const std::vector<SampleKind> kinds{
        {"labelled rows", 6, labelledRows},
        {"sheet", 6, sheet},
        {"prompt", 6, prompt},
        {"menu", 8, menu},
        {"shop", 5, shop},
        {"subtitle", 6, subtitle},
        {"icons", 4, icons},
    };
    return kinds;
}
