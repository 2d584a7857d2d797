#pragma once

#include "Platform/linux/dbus/AtSpiProtocol.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QRectF>
#include <QVariant>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

// One hunt for one answer on the accessibility bus: questions to objects of other programs, within one time
// limit. On a thread that may wait.
//
// Whatever an object refuses, answers in another shape than the protocol's or not in time reads as absent.
class AtSpiInquiry {
public:
    struct Question {
        AtSpiObject object;
        QString interface;
        QString method;
        QVariantList arguments = {};
    };

    // `isWanted` may turn false at any time, which ends the inquiry.
    AtSpiInquiry(QDBusConnection bus, QDeadlineTimer limit, std::function<bool()> isWanted);

    // No more is asked: the time is up or nobody wants to know.
    [[nodiscard]] bool isOver() const { return deadline.hasExpired() || !wanted(); }

    // Asks all at once and waits for all answers, in the order of the questions; for so long at most, where
    // one program that hangs is not to use up the time of the others.
    [[nodiscard]] std::vector<QDBusMessage> ask(const std::vector<Question> &questions) const;
    [[nodiscard]] std::vector<QDBusMessage> ask(const std::vector<Question> &questions,
                                                std::chrono::milliseconds limit) const;
    [[nodiscard]] QDBusMessage ask(const Question &question) const;

    // The first argument of an answer: a value of the bus type `signature`.
    template <typename T>
    [[nodiscard]] static std::optional<T> read(const QDBusMessage &answer, const char *signature)
    {
        if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String(signature))
            return std::nullopt;
        return qdbus_cast<T>(answer.arguments().constFirst());
    }

    // The value of a property, from the answer to `propertyQuestion`; structures come as QDBusArgument.
    template <typename T>
    [[nodiscard]] static std::optional<T> readProperty(const QDBusMessage &answer)
    {
        const auto value = read<QDBusVariant>(answer, "v");
        if (!value || value->variant().metaType() != QMetaType::fromType<T>())
            return std::nullopt;
        return value->variant().value<T>();
    }
    [[nodiscard]] static Question propertyQuestion(const AtSpiObject &object, const QString &interface,
                                                   const QString &name);

    // Four numbers, as a structure or one by one.
    [[nodiscard]] static std::optional<QRectF> readRect(const QDBusMessage &answer);

    [[nodiscard]] std::vector<AtSpiObject> childrenOf(const AtSpiObject &object) const;

    // Whether each has a text with a caret.
    [[nodiscard]] std::vector<bool> haveText(const std::vector<AtSpiObject> &objects) const;

private:
    QDBusConnection connection;
    QDeadlineTimer deadline;
    std::function<bool()> wanted;
};
