// Another program: a window with a text field. It tells on standard output what happens to it, and obeys
// words on standard input.

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTextStream>
#include <QVBoxLayout>
#include <QWidget>
#include <iostream>
#include <unistd.h>

namespace {

void say(const QString &line)
{
    std::cout << line.toStdString() << std::endl;
}

class Reporter : public QObject {
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress && !static_cast<QKeyEvent *>(event)->text().isEmpty())
            ++keys;
        if (event->type() == QEvent::MouseButtonPress)
            ++presses;
        return false;
    }
    int keys = 0;
    int presses = 0;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("DesktopNeighbour"));
    QWidget window;
    window.setWindowTitle(QStringLiteral("Neighbour"));
    auto *field = new QLineEdit;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(field);
    Reporter reporter;
    field->installEventFilter(&reporter);
    window.setGeometry(900, 200, 400, 200);
    window.show();
    window.activateWindow();
    field->setFocus();

    QObject::connect(field, &QLineEdit::textChanged, field,
                     [](const QString &text) { say(u"text " + text); });
    QObject::connect(&application, &QApplication::focusChanged, field, [field](QWidget *, QWidget *now) {
        say(now == field ? QStringLiteral("focused") : QStringLiteral("unfocused"));
    });
    say(QStringLiteral("window %1").arg(window.winId()));

    QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &application, [&] {
        std::string order;
        if (!std::getline(std::cin, order)) {
            QApplication::quit();
            return;
        }
        if (order == "report") {
            QGuiApplication::sync();
            say(QStringLiteral("report %1 %2").arg(reporter.keys).arg(reporter.presses));
        } else if (order == "hide") {
            window.hide();
        } else if (order == "activate") {
            window.activateWindow();
        } else if (order.rfind("own ", 0) == 0) {
            const QString text = QString::fromStdString(order.substr(4));
            QGuiApplication::clipboard()->setText(text, QClipboard::Clipboard);
            QGuiApplication::clipboard()->setText(text, QClipboard::Selection);
            say(QStringLiteral("owned"));
        }
    });
    return QApplication::exec();
}
