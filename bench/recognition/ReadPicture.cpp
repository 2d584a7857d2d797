// Reads pictures as the program does: read-picture [--explain FOLDER] FILE…

#include "Platform/linux/tesseract/Explain.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QTextStream>

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const auto reader = PageReader::open(QStringLiteral("/usr/share/tesseract-ocr/5/tessdata"),
                                         {QStringLiteral("ita"), QStringLiteral("eng")});
    if (!reader)
        return 1;
    QStringList arguments = QGuiApplication::arguments().mid(1);
    QString folder;
    if (arguments.value(0) == QStringLiteral("--explain")) {
        folder = arguments.value(1);
        arguments = arguments.mid(2);
    }
    QTextStream out(stdout);
    for (const QString &file : arguments) {
        QImageReader source(file);
        source.setAutoTransform(true);
        const QImage image = source.read();
        if (!folder.isEmpty()) {
            if (!explain(*reader, image, folder))
                return 1;
            continue;
        }
        const auto fragments = reader->read(image, [] { return false; });
        if (!fragments)
            return 1;
        for (const RecognizedFragment &fragment : *fragments)
            out << fragment.confidence << "  " << fragment.text << '\n';
    }
    return 0;
}
