#include "Platform/linux/dbus/AtSpiInquiry.h"

#include <QDBusPendingCall>
#include <QDBusVariant>
#include <algorithm>

namespace {

constexpr std::chrono::milliseconds longestAnswer(80); // a program that lives answers within one

} // namespace

AtSpiInquiry::AtSpiInquiry(QDBusConnection bus, QDeadlineTimer limit, std::function<bool()> isWanted)
    : connection(std::move(bus)), deadline(limit), wanted(std::move(isWanted))
{
}

std::vector<QDBusMessage> AtSpiInquiry::ask(const std::vector<Question> &questions) const
{
    return ask(questions, longestAnswer);
}

std::vector<QDBusMessage> AtSpiInquiry::ask(const std::vector<Question> &questions,
                                            std::chrono::milliseconds limit) const
{
    std::vector<QDBusMessage> answers(questions.size());
    if (isOver())
        return answers;
    const int patience =
        std::clamp(static_cast<int>(deadline.remainingTime()), 1, static_cast<int>(limit.count()));
    std::vector<QDBusPendingCall> calls;
    calls.reserve(questions.size());
    for (const Question &question : questions) {
        auto message = QDBusMessage::createMethodCall(question.object.bus, question.object.path.path(),
                                                      question.interface, question.method);
        message.setArguments(question.arguments);
        message.setAutoStartService(false);
        calls.push_back(connection.asyncCall(message, patience));
    }
    for (size_t index = 0; index < calls.size(); ++index) {
        calls[index].waitForFinished();
        answers[index] = calls[index].reply();
    }
    return answers;
}

QDBusMessage AtSpiInquiry::ask(const Question &question) const
{
    return ask(std::vector{question}).front();
}

AtSpiInquiry::Question AtSpiInquiry::propertyQuestion(const AtSpiObject &object, const QString &interface,
                                                      const QString &name)
{
    return {
        object, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"), {interface, name}};
}

std::optional<QRectF> AtSpiInquiry::readRect(const QDBusMessage &answer)
{
    int x = 0, y = 0, width = 0, height = 0;
    if (answer.type() != QDBusMessage::ReplyMessage)
        return std::nullopt;
    const QVariantList values = answer.arguments();
    if (answer.signature() == u"(iiii)") {
        const auto box = values.constFirst().value<QDBusArgument>();
        box.beginStructure();
        box >> x >> y >> width >> height;
        box.endStructure();
    } else if (answer.signature() == u"iiii") {
        x = values[0].toInt();
        y = values[1].toInt();
        width = values[2].toInt();
        height = values[3].toInt();
    } else {
        return std::nullopt;
    }
    return QRectF(x, y, width, height);
}

std::vector<AtSpiObject> AtSpiInquiry::childrenOf(const AtSpiObject &object) const
{
    const auto children =
        read<QList<AtSpiObject>>(ask({object, AtSpi::accessible, QStringLiteral("GetChildren")}), "a(so)");
    return children ? std::vector(children->begin(), children->end()) : std::vector<AtSpiObject>();
}

std::vector<bool> AtSpiInquiry::haveText(const std::vector<AtSpiObject> &objects) const
{
    std::vector<Question> questions;
    questions.reserve(objects.size());
    for (const AtSpiObject &object : objects)
        questions.push_back({object, AtSpi::accessible, QStringLiteral("GetInterfaces")});
    std::vector<bool> have;
    have.reserve(objects.size());
    for (const QDBusMessage &answer : ask(questions)) {
        const auto interfaces = read<QStringList>(answer, "as");
        have.push_back(interfaces && interfaces->contains(AtSpi::text));
    }
    return have;
}
