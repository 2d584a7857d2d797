// A Qt program to paste into: a line and a text view, which write what they hold into two files at each
// change.
//
//     qt-entry LINE_FILE VIEW_FILE
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QSaveFile>
#include <QTextEdit>
#include <QVBoxLayout>
#include <cstdio>

namespace {

// Replaced in one step, so that a reader never sees half a text.
void write(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        std::fprintf(stderr, "Cannot write %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const auto arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: qt-entry LINE_FILE VIEW_FILE\n", stderr);
        return 2;
    }
    QWidget window;
    window.setWindowTitle(QFileInfo(arguments[1]).fileName());
    auto *line = new QLineEdit;
    auto *view = new QTextEdit;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(line);
    layout->addWidget(view);
    QObject::connect(line, &QLineEdit::textChanged,
                     [path = arguments[1]](const QString &text) { write(path, text); });
    QObject::connect(view, &QTextEdit::textChanged,
                     [path = arguments[2], view] { write(path, view->toPlainText()); });
    write(arguments[1], {});
    write(arguments[2], {});
    window.resize(420, 240);
    window.show();
    line->setFocus();
    return QApplication::exec();
}
