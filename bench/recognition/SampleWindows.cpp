#include "bench/recognition/SampleWindows.h"

#include "bench/recognition/SampleTexts.h"

#include <QFontMetrics>
#include <QPainterPath>

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
