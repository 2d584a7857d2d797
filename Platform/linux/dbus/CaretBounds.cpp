#include "Platform/linux/dbus/CaretBounds.h"

#include "Platform/linux/dbus/AtSpiTree.h"

#include <QThread>
#include <algorithm>
#include <cmath>

namespace CaretBounds {

namespace {

constexpr double widestCaret = 2000;
constexpr double largestScale = 4;
constexpr double highestLine = 64;       // a field higher than this has several lines
constexpr double usualLine = 20;         // the height of one there, where no character tells
constexpr double roundingSlack = 2;      // pixels
constexpr unsigned long geckoPause = 30; // milliseconds until Firefox has made what it was asked for first

const QString getExtents = QStringLiteral("GetExtents");
const QString getCharacterExtents = QStringLiteral("GetCharacterExtents");

// What there is to know before the caret itself.
struct Field {
    AtSpiObject text;
    int offset = 0; // of the caret
    QString toolkit;
    std::optional<QRectF> extents;
    QRectF window; // as the program has it; empty when it does not say
};

std::optional<Field> learn(const AtSpiInquiry &inquiry, const FocusedText &focused)
{
    const AtSpiObject window = AtSpiTree::windowOf(inquiry, focused.text, focused.root);
    const QVariantList screen{QVariant(uint(AtSpi::screen))};
    std::vector<AtSpiInquiry::Question> questions{
        AtSpiInquiry::propertyQuestion(focused.text, AtSpi::text, QStringLiteral("CaretOffset")),
        AtSpiInquiry::propertyQuestion(focused.root, AtSpi::application, QStringLiteral("ToolkitName")),
        {focused.text, AtSpi::component, getExtents, screen}};
    if (!window.isNull())
        questions.push_back({window, AtSpi::component, getExtents, screen});
    const auto answers = inquiry.ask(questions);
    const auto offset = AtSpiInquiry::readProperty<int>(answers[0]);
    if (!offset || *offset < 0)
        return std::nullopt;
    return Field{focused.text, *offset, AtSpiInquiry::readProperty<QString>(answers[1]).value_or(QString()),
                 AtSpiInquiry::readRect(answers[2]),
                 window.isNull() ? QRectF() : AtSpiInquiry::readRect(answers[3]).value_or(QRectF())};
}

struct Place {
    QRectF rect;           // in the program's pixels
    bool inWindow = false; // counted from the window, not from the screen
};

QDBusMessage askCharacter(const AtSpiInquiry &inquiry, const Field &field, int offset, uint coordinates)
{
    return inquiry.ask({field.text, AtSpi::text, getCharacterExtents, {offset, coordinates}});
}

// The character before the caret, for programs that have no place for the end of a text.
std::optional<QRectF> afterPrevious(const AtSpiInquiry &inquiry, const Field &field, uint coordinates)
{
    const int previous = field.offset - 1;
    const auto answers =
        inquiry.ask({{field.text, AtSpi::text, getCharacterExtents, {previous, coordinates}},
                     {field.text, AtSpi::text, QStringLiteral("GetText"), {previous, field.offset}}});
    const auto character = AtSpiInquiry::readRect(answers[0]);
    if (!character || !isPlace(*character))
        return std::nullopt;
    const auto text = AtSpiInquiry::read<QString>(answers[1], "s").value_or(QString());
    const bool isLineBreak = text == u"\n" || text == QChar(QChar::ParagraphSeparator);
    if (isLineBreak && !field.extents)
        return std::nullopt;
    return after(*character, isLineBreak, field.extents.value_or(QRectF()));
}

std::optional<Place> locate(const AtSpiInquiry &inquiry, const Field &field)
{
    QDBusMessage answer = askCharacter(inquiry, field, field.offset, AtSpi::screen);
    // GTK 4 does not know where its windows are, and says so.
    const bool inWindow = answer.type() == QDBusMessage::ErrorMessage && !inquiry.isOver();
    const uint coordinates = inWindow ? AtSpi::window : AtSpi::screen;
    if (inWindow)
        answer = askCharacter(inquiry, field, field.offset, coordinates);
    auto character = AtSpiInquiry::readRect(answer);
    if (character && !isPlace(*character) && field.toolkit == u"Gecko") {
        QThread::msleep(geckoPause);
        character = AtSpiInquiry::readRect(askCharacter(inquiry, field, field.offset, coordinates));
    }
    if (character && isPlace(*character))
        return Place{*character, inWindow};
    if (field.offset > 0) {
        if (const auto rect = afterPrevious(inquiry, field, coordinates))
            return Place{*rect, inWindow};
    }
    // With something written before the caret, only a field of one line is near enough to it.
    if (field.extents && isPlace(*field.extents) &&
        (field.offset == 0 || field.extents->height() <= highestLine))
        return Place{atStart(*field.extents), inWindow};
    return std::nullopt;
}

} // namespace

bool isPlace(const QRectF &rect)
{
    return rect.height() > 0 && rect.x() != -1 && rect.y() != -1;
}

double scale(double serverWidth, double programWidth, bool wholeNumbers)
{
    if (serverWidth <= 0 || programWidth <= 0)
        return 1;
    const double steps = wholeNumbers ? 1 : 4;
    return std::clamp(std::round(serverWidth / programWidth * steps) / steps, 1.0, largestScale);
}

bool isAcceptable(const QRectF &caret, const QRect &window)
{
    const QRectF room = QRectF(window).adjusted(-roundingSlack, -roundingSlack, roundingSlack, roundingSlack);
    const bool isInside = caret.left() >= room.left() && caret.right() <= room.right() &&
                          caret.top() >= room.top() && caret.bottom() <= room.bottom();
    return isInside && caret.height() > 0 && caret.width() < widestCaret;
}

QRectF after(const QRectF &character, bool isLineBreak, const QRectF &field)
{
    if (isLineBreak)
        return {field.left(), character.bottom(), 0, character.height()};
    return {character.right(), character.top(), 0, character.height()};
}

QRectF atStart(const QRectF &field)
{
    return {field.left(), field.top(), 0, field.height() <= highestLine ? field.height() : usualLine};
}

std::optional<QRectF> find(const AtSpiInquiry &inquiry, const FocusedText &focused, const QRect &window)
{
    const auto field = learn(inquiry, focused);
    if (!field)
        return std::nullopt;
    const auto place = locate(inquiry, *field);
    if (!place)
        return std::nullopt;
    const bool isGtk = field->toolkit.compare(u"gtk", Qt::CaseInsensitive) == 0;
    const double factor = scale(window.width(), field->window.width(), isGtk);
    QRectF caret(place->rect.topLeft() * factor, place->rect.size() * factor);
    if (place->inWindow)
        caret.translate(window.topLeft());
    return isAcceptable(caret, window) ? std::optional(caret) : std::nullopt;
}

} // namespace CaretBounds
