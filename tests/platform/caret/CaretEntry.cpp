// A Qt program to look for the caret in: a line or a view with a text, the caret at a place in it.
//
//     caret-entry line|view TEXT POSITION
//
// Prints "ready" when it has the keyboard, then answers each line on standard input with its caret in screen
// coordinates, "x y width height", as its toolkit tells input methods. Ends with its input.

#include <QApplication>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>
#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

namespace {

QWidget *makeField(const QString &kind, const QString &text, int position)
{
    if (kind == QStringLiteral("line")) {
        auto *line = new QLineEdit(text);
        line->setCursorPosition(position);
        return line;
    }
    auto *view = new QTextEdit;
    view->setPlainText(text);
    QTextCursor cursor = view->textCursor();
    cursor.setPosition(position);
    view->setTextCursor(cursor);
    return view;
}

void tellCaret(const QWidget *field)
{
    const QRect local = field->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const QRect caret(field->mapToGlobal(local.topLeft()), local.size());
    std::printf("%d %d %d %d\n", caret.x(), caret.y(), caret.width(), caret.height());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    QWidget window;
    window.setWindowTitle(QStringLiteral("Caret entry"));
    QWidget *field = makeField(arguments.value(1), arguments.value(2), arguments.value(3).toInt());
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new QLineEdit(QStringLiteral("not this one")));
    layout->addWidget(field);
    window.setGeometry(300, 200, 420, 240);
    QObject::connect(&application, &QApplication::focusChanged, [](QWidget *, const QWidget *now) {
        std::puts(now ? "ready" : "left");
        std::fflush(stdout);
    });
    field->setFocus();
    window.show();

    QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &application, [field] {
        std::string line;
        if (!std::getline(std::cin, line))
            QApplication::quit();
        else
            tellCaret(field);
    });
    return QApplication::exec();
}
