#include "bench/recognition/SamplePage.h"

#include <QFontMetrics>

namespace {

QFont fontOf(QRandomGenerator &random, const QStringList &families, int pixels)
{
    QFont font(families.at(static_cast<qsizetype>(random.bounded(static_cast<quint32>(families.size())))));
    font.setPixelSize(pixels);
    const std::array hints{QFont::PreferFullHinting, QFont::PreferVerticalHinting, QFont::PreferNoHinting};
    font.setHintingPreference(hints[random.bounded(3U)]);
    return font;
}

} // namespace

SamplePage::SamplePage(QRandomGenerator &source, QSize size, const QColor &paper)
    : random(source), image(size, QImage::Format_RGB32)
{
    image.fill(paper);
    painter = std::make_unique<QPainter>(&image);
    painter->setRenderHint(QPainter::Antialiasing);
}

QRect SamplePage::text(QPoint topLeft, const QString &words, const QFont &font, const QColor &color)
{
    const QFontMetrics metrics(font);
    painter->setFont(font);
    painter->setPen(color);
    painter->drawText(topLeft + QPoint(0, metrics.ascent()), words);
    said << words;
    return {topLeft, QSize(metrics.horizontalAdvance(words), metrics.height())};
}

QRect SamplePage::centred(const QRect &box, const QString &words, const QFont &font, const QColor &color)
{
    const QFontMetrics metrics(font);
    return text(QPoint(box.left() + (box.width() - metrics.horizontalAdvance(words)) / 2,
                       box.top() + (box.height() - metrics.height()) / 2),
                words, font, color);
}

Sample SamplePage::finished(const QString &kind)
{
    painter.reset();
    return {kind, image, said.join(u'\n')};
}

QFont sansFont(QRandomGenerator &random, int pixels, bool wide)
{
    QStringList families{QStringLiteral("DejaVu Sans"), QStringLiteral("Liberation Sans"),
                         QStringLiteral("Noto Sans"), QStringLiteral("Cantarell")};
    if (wide)
        families << QStringLiteral("Roboto") << QStringLiteral("Open Sans") << QStringLiteral("Lato")
                 << QStringLiteral("Inter") << QStringLiteral("Liberation Serif")
                 << QStringLiteral("DejaVu Serif") << QStringLiteral("Noto Serif");
    QFont font = fontOf(random, families, pixels);
    if (random.bounded(5U) == 0)
        font.setBold(true);
    return font;
}

QFont monoFont(QRandomGenerator &random, int pixels, bool wide)
{
    QStringList families{QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Liberation Mono")};
    if (wide)
        families << QStringLiteral("Hack") << QStringLiteral("Noto Sans Mono")
                 << QStringLiteral("Nimbus Mono PS");
    return fontOf(random, families, pixels);
}
