// Another program: a window with a text field. It tells on standard output what happens to it, and obeys
// words on standard input.
//
//     desktopNeighbour [line|view TEXT POSITION]    the field, what it holds, and where its caret is

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTextCursor>
#include <QTextEdit>
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

QWidget *makeView(const QString &text, int position)
{
    auto *view = new QTextEdit;
    view->setPlainText(text);
    QTextCursor cursor = view->textCursor();
    cursor.setPosition(position);
    view->setTextCursor(cursor);
    return view;
}

QWidget *makeLine(const QString &text, int position)
{
    auto *line = new QLineEdit(text);
    line->setCursorPosition(position);
    QObject::connect(line, &QLineEdit::textChanged, line, [](const QString &now) { say(u"text " + now); });
    return line;
}

// Where the toolkit tells input methods that it is, in its own screen coordinates.
QString caretOf(const QWidget *field)
{
    const QRect local = field->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const QPoint place = field->mapToGlobal(local.topLeft());
    return QStringLiteral("%1 %2 %3 %4").arg(place.x()).arg(place.y()).arg(local.width()).arg(local.height());
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("DesktopNeighbour"));
    QWidget window;
    window.setWindowTitle(QStringLiteral("Neighbour"));
    const QStringList arguments = QApplication::arguments();
    const auto make = arguments.value(1) == u"view" ? makeView : makeLine;
    QWidget *field = make(arguments.value(2), arguments.value(3).toInt());
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(field);
    Reporter reporter;
    field->installEventFilter(&reporter);
    window.setGeometry(900, 200, 400, 200);
    window.show();
    window.activateWindow();
    field->setFocus();

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
        } else if (order == "caret") {
            say(caretOf(field));
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
